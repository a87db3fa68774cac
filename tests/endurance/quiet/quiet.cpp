// A plug-in that does nothing and contains no C++ runtime: such a runtime leaks some memory on every load, which would
// hide leaks of the host.

extern "C" {

__declspec(dllexport) int InitOk() { return 0; }
__declspec(dllexport) void StopOk() {}
__declspec(dllexport) void CleanupOk() {}
}
