// See inner.cpp.
extern "C" int innerAnswer();
extern "C" int middleAnswer() { return innerAnswer(); }
