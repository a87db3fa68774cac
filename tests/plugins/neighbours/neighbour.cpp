// A library that a plug-in may have beside it in its own folder.
extern "C" int answer() { return 42; }
