// See inner.cpp. The library also has all the entry points of tests/plugins/behaviours.
extern "C" int middleAnswer();
extern "C" int InitOuter() { return middleAnswer(); }
