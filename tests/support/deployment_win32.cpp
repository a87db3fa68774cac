#include <cstring>

#include "tests/support/deployment.h"
#include "tests/support/imports_win32.h"

namespace {

support::tDeploymentPlatform* current = nullptr;
int loadedLibrary = 0;  // its address serves as the library's handle

HMODULE handle() { return reinterpret_cast<HMODULE>(&loadedLibrary); }

bool isFramework(const char* name) {
    return current != nullptr && name != nullptr && std::strcmp(name, nZusysapi::libraryName) == 0;
}

HMODULE findModule(const char* name) {
    if (!isFramework(name)) return imports::GetModuleHandleA.real(name);
    return nullptr;  // never loaded already, so that every attempt uses the machine's current state
}

HMODULE load(const char* name, HANDLE file, DWORD flags) {
    if (!isFramework(name)) return imports::LoadLibraryExA.real(name, file, flags);
    if (current->entry != nullptr) return handle();
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

FARPROC findEntry(HMODULE library, const char* name) {
    if (library != handle()) return imports::GetProcAddress.real(library, name);
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(current->entry));
}

BOOL unload(HMODULE library) { return library == handle() ? TRUE : imports::FreeLibrary.real(library); }

void sleep(DWORD milliseconds) {
    if (current == nullptr) return imports::Sleep.real(milliseconds);
    current->pauses.push_back(milliseconds);
    if (current->onPause) current->onPause();
}

}  // namespace

namespace support {

tDeploymentPlatform::tDeploymentPlatform(nZusysapi::InstantiateFramework2 libraryEntry) : entry(libraryEntry) {
    current = this;
    imports::GetModuleHandleA.replace(findModule);
    imports::LoadLibraryExA.replace(load);
    imports::GetProcAddress.replace(findEntry);
    imports::FreeLibrary.replace(unload);
    imports::Sleep.replace(sleep);
}

tDeploymentPlatform::~tDeploymentPlatform() { current = nullptr; }

}  // namespace support
