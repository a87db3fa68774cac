// Never shipped. A library that cannot be loaded: it needs a function that exists nowhere.
extern "C" int definedNowhere();
extern "C" int InitOk() { return definedNowhere(); }
