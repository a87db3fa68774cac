/* The smallest plug-in. The host gets copies of it, each with a time stamp and a checksum of its own. */
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
