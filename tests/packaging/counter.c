/* A plug-in that writes down its calls. Its Stop does not return as long as there is a file C:\hang. */
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
