/* A plug-in that writes down its calls. Its Stop does not return as long as there is a file C:\hang. For rundll32 it
   also contains what Wine's sc cannot do. */
#include <stdint.h>
#include <stdio.h>
#include <windows.h>

static void note(const char* call) {
    FILE* const file = fopen("C:\\calls.txt", "a");
    if (file == NULL) return;
    fprintf(file, "%s\n", call);
    fclose(file);
}

__declspec(dllexport) int32_t CounterInitialize(void) {
    note("start");
    return 0;
}

__declspec(dllexport) void CounterStop(void) {
    note("stop");
    while (GetFileAttributesA("C:\\hang") != INVALID_FILE_ATTRIBUTES) Sleep(100);
}

__declspec(dllexport) void CALLBACK DisableService(HWND window, HINSTANCE instance, LPSTR arguments, int show) {
    (void)window, (void)instance, (void)arguments, (void)show;
    const SC_HANDLE manager = OpenSCManagerA(NULL, NULL, SC_MANAGER_CONNECT);
    const SC_HANDLE service = OpenServiceA(manager, "zuZiptraRemoteService", SERVICE_CHANGE_CONFIG);
    ChangeServiceConfigA(service, SERVICE_NO_CHANGE, SERVICE_DISABLED, SERVICE_NO_CHANGE, NULL, NULL, NULL, NULL, NULL,
                         NULL, NULL);
}
