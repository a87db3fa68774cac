// A plug-in that does nothing and brings no C++ runtime: with every load the runtime of another takes some memory that
// it never gives back, which would hide what the host keeps.

extern "C" {

__declspec(dllexport) int InitOk() { return 0; }
__declspec(dllexport) void StopOk() {}
__declspec(dllexport) void CleanupOk() {}
}
