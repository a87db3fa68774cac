/* What starting and ending any program costs. */
int main(void) { return 0; }
