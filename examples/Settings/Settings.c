/* Example of a plug-in in C that depends on no other: it reads Settings.txt from the folder of its own library. */
#include "Settings.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>
#include <ziptra/plugin.h>

/* Results of SettingsInitialize. A positive one is a warning: the plug-in counts as started, and the status file shows
   the number. A negative one is an error: neither the plug-in nor those that depend on it are started. */
enum { started = 0, startedWithoutFile = 1, cannotFindItself = -1, cannotReadFile = -2, outOfMemory = -3 };

enum { longestPath = 32768, largestFile = 1 << 20 };

static char folder[3 * longestPath];
static char* text;      /* the file's content; each line is a string of its own, terminated by a zero */
static const char* end; /* one past the last line */

/* Finds the full path of Settings.txt in this library's folder, whatever the host's current directory is. Also sets
   `folder`. Requires: `path` has space for longestPath characters. Returns 0 on failure. */
static int findFile(wchar_t* path) {
    static const wchar_t name[] = L"Settings.txt";
    HMODULE self = NULL;
    const DWORD capacity = longestPath - (DWORD)(sizeof name / sizeof *name);
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            (LPCWSTR)&text, &self)) {
        return 0;
    }
    const DWORD length = GetModuleFileNameW(self, path, capacity);
    if (length == 0 || length == capacity) return 0; /* failed or truncated */
    wchar_t* const last = wcsrchr(path, L'\\');
    if (last == NULL) return 0;
    *last = 0;
    if (WideCharToMultiByte(CP_UTF8, 0, path, -1, folder, sizeof folder, NULL, NULL) == 0) return 0;
    *last = L'\\';
    wcscpy(last + 1, name);
    return 1;
}

/* Reads the file into `text`. Returns a result of SettingsInitialize. */
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
    /* A UTF-8 byte-order mark becomes three empty lines. */
    if (strncmp(text, "\xEF\xBB\xBF", 3) == 0) text[0] = text[1] = text[2] = 0;
    return started;
}

static void release(void) {
    free(text);
    text = NULL;
    end = NULL;
}

ZIPTRA_EXPORT int32_t SettingsInitialize(void) {
    static wchar_t path[longestPath];
    if (!findFile(path)) return cannotFindItself;
    FILE* const file = _wfopen(path, L"rb");
    if (file == NULL) return GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES ? startedWithoutFile : cannotReadFile;
    const int result = readAll(file);
    fclose(file);
    if (result < 0) release(); /* the host calls no Cleanup after a failed Initialize */
    return result;
}

ZIPTRA_EXPORT void SettingsCleanup(void) { release(); }

ZIPTRA_EXPORT const char* SettingsValue(const char* name, const char* fallback) {
    const size_t length = strlen(name);
    for (const char* line = text; line < end; line += strlen(line) + 1) {
        if (strncmp(line, name, length) == 0 && line[length] == '=') return line + length + 1;
    }
    return fallback;
}

ZIPTRA_EXPORT const char* SettingsFolder(void) { return folder; }
