/* A library without any code that runs by itself, not even an entry point. */
__declspec(dllexport) int passiveValue(void);
int passiveValue(void) { return 0; }
