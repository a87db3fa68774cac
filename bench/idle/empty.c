/* What a program costs that is not there. */
int main(void) { return 0; }
