// A plug-in that can be loaded only if the library beside it is found.
extern "C" int answer();
extern "C" int InitAnswer() { return answer(); }
