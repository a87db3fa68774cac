/* A program that does nothing but stay, after the two system calls that the host cannot do without and that load most
   of the libraries it has in memory: it asks whether it is a service, and where the status file belongs. */
#include <shlobj.h>
#include <windows.h>

static void WINAPI serviceMain(DWORD count, char** arguments) {
    (void)count;
    (void)arguments;
}

int main(void) {
    char name[] = "idle";
    const SERVICE_TABLE_ENTRYA table[] = {{name, serviceMain}, {NULL, NULL}};
    wchar_t folder[MAX_PATH];
    StartServiceCtrlDispatcherA(table);
    SHGetFolderPathW(NULL, CSIDL_COMMON_APPDATA, NULL, SHGFP_TYPE_CURRENT, folder);
    Sleep(INFINITE);
    return 0;
}
