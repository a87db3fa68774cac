// What a plug-in may keep beside itself in its own folder.
extern "C" int answer() { return 42; }
