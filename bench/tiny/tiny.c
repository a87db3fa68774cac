/* The smallest plug-in. The host loads copies of it, each with its own time stamp and checksum. */
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void* reserved) {
    (void)library;
    (void)reason;
    (void)reserved;
    return TRUE;
}

__declspec(dllexport) int TinyInitialize(void) { return 0; }
__declspec(dllexport) void TinyStop(void) {}
__declspec(dllexport) void TinyCleanup(void) {}
