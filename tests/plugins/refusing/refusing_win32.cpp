// A library that refuses to be loaded.
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE /*self*/, DWORD reason, LPVOID /*reserved*/) {
    return reason == DLL_PROCESS_ATTACH ? FALSE : TRUE;
}
