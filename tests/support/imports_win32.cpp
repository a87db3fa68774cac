#include "tests/support/imports_win32.h"

#include <gtest/gtest.h>
#include <winternl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" NTSTATUS NTAPI LdrLoadDll(PWSTR, PULONG, PUNICODE_STRING, PVOID*);
extern "C" NTSTATUS NTAPI LdrGetProcedureAddress(PVOID, PANSI_STRING, ULONG, PVOID*);

namespace imports {
namespace {

ImportBase* replaced = nullptr;

class tRestoreAfterEachTest : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& /*test*/) override { ImportBase::restoreAll(); }
};

[[maybe_unused]] const bool listening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new tRestoreAfterEachTest);
    return true;
}();

/// The function to which the linker binds the product's call instead of the import.
template <auto& import, class Function>
struct Door;

template <auto& import, class Result, class... Arguments>
struct Door<import, Result(Arguments...)> {
    static Result enter(Arguments... arguments) { return import.call(arguments...); }
};

/// A function that the product looks up by name instead of importing it can be replaced like the others.
template <>
struct Door<GetProcAddress, decltype(::GetProcAddress)> {
    static FARPROC WINAPI enter(HMODULE library, const char* name) {
        const FARPROC found = GetProcAddress.call(library, name);
        const bool isOurs = found != nullptr && HIWORD(name) != 0 && std::strcmp(name, "SHGetFolderPathW") == 0;
        if (!isOurs) return found;
        const auto door = &Door<SHGetFolderPathW, decltype(::SHGetFolderPathW)>::enter;
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(door));
    }
};

}  // namespace

void* systemAddress(const wchar_t* library, const char* name) {
    UNICODE_STRING libraryName;
    RtlInitUnicodeString(&libraryName, library);
    ANSI_STRING entryName;
    RtlInitAnsiString(&entryName, name);
    void* module = nullptr;
    void* address = nullptr;
    if (LdrLoadDll(nullptr, nullptr, &libraryName, &module) != 0 ||
        LdrGetProcedureAddress(module, &entryName, 0, &address) != 0) {
        std::fprintf(stderr, "no %s in %ls\n", name, library);
        std::abort();
    }
    return address;
}

void ImportBase::remember() {
    if (remembered_) return;
    remembered_ = true;
    next_ = replaced;
    replaced = this;
}

void ImportBase::restoreAll() {
    for (ImportBase* import = replaced; import != nullptr; import = import->next_) import->restore();
}

#define DEFINE_IMPORT(library, name) constinit Import<decltype(::name)> name{library, #name};
IMPORTS(DEFINE_IMPORT)
IMPORTS_BEHIND_A_JUMP(DEFINE_IMPORT)
#undef DEFINE_IMPORT

}  // namespace imports

extern "C" {
#define DEFINE_DOOR(library, name) \
    constinit decltype(&::name) __imp_##name = &imports::Door<imports::name, decltype(::name)>::enter;
IMPORTS(DEFINE_DOOR)
IMPORTS_BEHIND_A_JUMP(DEFINE_DOOR)
#undef DEFINE_DOOR
}

#define DEFINE_JUMP(library, name) asm(".text\n.globl " #name "\n" #name ": jmp *__imp_" #name "(%rip)\n");
IMPORTS_BEHIND_A_JUMP(DEFINE_JUMP)
#undef DEFINE_JUMP
