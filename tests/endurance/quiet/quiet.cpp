// A plug-in that does nothing and has no C++ runtime: a runtime allocates some memory with every load and never frees
// it, which would hide a leak in the host.

extern "C" {

__declspec(dllexport) int InitOk() { return 0; }
__declspec(dllexport) void StopOk() {}
__declspec(dllexport) void CleanupOk() {}
}
