/* A library without any code that runs by itself, not even an entry point. */
int passiveValue(void);
__declspec(dllexport) int passiveValue(void) { return 0; }
