// The end of a chain of libraries: outer needs middle, and middle needs this one.
extern "C" int innerAnswer() { return 0; }
