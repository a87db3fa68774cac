/* The example of a plug-in in C that needs no other one: it reads Settings.txt beside its own library. */
#include "Settings.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

/* Results of SettingsInitialize. A positive one is a warning: the plug-in counts as started, and the status file shows
   the number. A negative one is an error: the plug-in and all that depend on it are not started. */
enum { started = 0, startedWithoutFile = 1, cannotFindItself = -1, cannotReadFile = -2, outOfMemory = -3 };

enum { longestPath = 32768, largestFile = 1 << 20 };

static char folder[3 * longestPath];
static char* text;      /* the file; every line is a text of its own, ended by a zero */
static const char* end; /* behind the last one */

/* The full path of Settings.txt beside this library, however the host was started and wherever it was started from. */
static int findFile(wchar_t* path) {
    static const wchar_t name[] = L"Settings.txt";
    HMODULE self = NULL;
    const DWORD room = longestPath - (DWORD)(sizeof name / sizeof *name);
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            (LPCWSTR)&text, &self)) {
        return 0;
    }
    const DWORD length = GetModuleFileNameW(self, path, room);
    if (length == 0 || length == room) return 0; /* failed or cut off */
    wchar_t* const last = wcsrchr(path, L'\\');
    if (last == NULL) return 0;
    *last = 0;
    if (WideCharToMultiByte(CP_UTF8, 0, path, -1, folder, sizeof folder, NULL, NULL) == 0) return 0;
    *last = L'\\';
    wcscpy(last + 1, name);
    return 1;
}

static int readAll(FILE* file) {
    text = malloc(largestFile + 1);
    if (text == NULL) return outOfMemory;
    const size_t length = fread(text, 1, largestFile, file);
    if (ferror(file) || fgetc(file) != EOF) return cannotReadFile;
    end = text + length;
    for (size_t at = 0; at < length; ++at) {
        if (text[at] == '\r' || text[at] == '\n') text[at] = 0;
    }
    text[length] = 0;
    /* The mark that some editors put before UTF-8 becomes three empty lines. */
    if (strncmp(text, "\xEF\xBB\xBF", 3) == 0) text[0] = text[1] = text[2] = 0;
    return started;
}

int SettingsInitialize(void) {
    static wchar_t path[longestPath];
    if (!findFile(path)) return cannotFindItself;
    FILE* const file = _wfopen(path, L"rb");
    if (file == NULL) return GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES ? startedWithoutFile : cannotReadFile;
    const int result = readAll(file);
    fclose(file);
    if (result < 0) SettingsCleanup(); /* the host calls no Cleanup after a failed Initialize */
    return result;
}

void SettingsCleanup(void) {
    free(text);
    text = NULL;
    end = NULL;
}

const char* SettingsValue(const char* name, const char* otherwise) {
    const size_t length = strlen(name);
    for (const char* line = text; line < end; line += strlen(line) + 1) {
        if (strncmp(line, name, length) == 0 && line[length] == '=') return line + length + 1;
    }
    return otherwise;
}

const char* SettingsFolder(void) { return folder; }
