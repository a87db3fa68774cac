#include "tests/sweep/ledger_win32.h"

#include "source/zusysapi.h"
#include "tests/support/imports_win32.h"

namespace sweep {
namespace {

constexpr const char* frameworkLibrary = "framework library";

/// Other values are results of failed calls; closing them does nothing.
bool isHandle(const void* handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }

/// For a call that returns what it opened.
template <class Import>
void opens(tLedger& ledger, Import& door, std::string_view kind) {
    door.replace([&ledger, kind, inner = door.current()](auto... arguments) {
        const auto handle = inner(arguments...);
        const DWORD error = imports::GetLastError.real();
        if (isHandle(handle)) ledger.opened(kind, handle);
        imports::SetLastError.real(error);
        return handle;
    });
}

template <class Import>
void closes(tLedger& ledger, Import& door, std::string_view kind) {
    door.replace([&ledger, kind, inner = door.current()](auto handle) {
        if (isHandle(handle)) ledger.closed(kind, handle);
        return inner(handle);
    });
}

void keepRegistry(tLedger& ledger) {
    imports::RegOpenKeyExW.replace([&ledger, inner = imports::RegOpenKeyExW.current()](
                                       HKEY hive, LPCWSTR path, DWORD options, REGSAM access, PHKEY key) {
        const LSTATUS result = inner(hive, path, options, access, key);
        if (result == ERROR_SUCCESS) ledger.opened("registry key", *key);
        return result;
    });
    closes(ledger, imports::RegCloseKey, "registry key");
}

template <class Import>
void givesText(tLedger& ledger, Import& door) {
    door.replace([&ledger, inner = door.current()](DWORD flags, LPCVOID source, DWORD id, DWORD language, auto* text,
                                                   DWORD size, va_list* arguments) {
        const DWORD length = inner(flags, source, id, language, text, size, arguments);
        const DWORD error = imports::GetLastError.real();
        // With this flag, `text` points to the variable for the address of the new block.
        const bool gave = length != 0 && (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0;
        if (gave) ledger.opened("local memory", *reinterpret_cast<void**>(text));
        imports::SetLastError.real(error);
        return length;
    });
}

void keepLocalMemory(tLedger& ledger) {
    imports::SetEntriesInAclA.replace([&ledger, inner = imports::SetEntriesInAclA.current()](
                                          ULONG count, PEXPLICIT_ACCESS_A entries, PACL old, PACL* list) {
        const DWORD error = inner(count, entries, old, list);
        if (error == ERROR_SUCCESS) ledger.opened("local memory", *list);
        return error;
    });
    givesText(ledger, imports::FormatMessageA);
    givesText(ledger, imports::FormatMessageW);  // Boost's, for the text of its exceptions
    closes(ledger, imports::LocalFree, "local memory");
}

/// The framework library stays loaded once its entry has been found, so it has a kind of its own.
void keepModules(tLedger& ledger) {
    imports::LoadLibraryExA.replace(
        [&ledger, inner = imports::LoadLibraryExA.current()](LPCSTR name, HANDLE file, DWORD flags) {
            const HMODULE module = inner(name, file, flags);
            const DWORD error = imports::GetLastError.real();
            const bool framework = std::string_view(name) == nZusysapi::libraryName;
            if (module != nullptr) ledger.opened(framework ? frameworkLibrary : "module", module);
            imports::SetLastError.real(error);
            return module;
        });
    imports::FreeLibrary.replace([&ledger, inner = imports::FreeLibrary.current()](HMODULE module) {
        ledger.closed(ledger.isOpen(frameworkLibrary, module) ? frameworkLibrary : "module", module);
        return inner(module);
    });
}

}  // namespace

void tLedger::opened(std::string_view kind, void* handle) { ++counts_[{std::string(kind), handle}].open; }

void tLedger::closed(std::string_view kind, void* handle) {
    tCount& count = counts_[{std::string(kind), handle}];
    if (count.open == 0) {
        ++wrongClosings;
        return;
    }
    --count.open;
    if (count.refused > count.open) count.refused = count.open;
}

void tLedger::refusedToClose(std::string_view kind, void* handle) {
    tCount& count = counts_[{std::string(kind), handle}];
    if (count.open == 0) ++wrongClosings;
    if (count.refused < count.open) ++count.refused;
}

std::vector<std::string> tLedger::leaks() const {
    std::vector<std::string> leaks;
    for (const auto& [what, count] : counts_) {
        if (count.open > count.refused && what.first != frameworkLibrary) leaks.push_back(what.first);
    }
    return leaks;
}

bool tLedger::isOpen(std::string_view kind, void* handle) const {
    const auto found = counts_.find({std::string(kind), handle});
    return found != counts_.end() && found->second.open > 0;
}

std::vector<void*> tLedger::open(std::string_view kind) const {
    std::vector<void*> handles;
    for (const auto& [what, count] : counts_) {
        if (what.first == kind) handles.insert(handles.end(), static_cast<std::size_t>(count.open), what.second);
    }
    return handles;
}

void tLedger::clear() {
    counts_.clear();
    wrongClosings = 0;
}

void keepLedger(tLedger& ledger) {
    opens(ledger, imports::CreateEventA, "handle");
    opens(ledger, imports::OpenProcess, "handle");
    opens(ledger, imports::CreateFileW, "handle");
    imports::CloseHandle.replace([&ledger, inner = imports::CloseHandle.current()](HANDLE handle) {
        // A lock of the runtime closes handles of its own; only a handle that the system refuses is not open.
        const bool known = ledger.isOpen("handle", handle);
        if (known) ledger.closed("handle", handle);
        const BOOL closed = inner(handle);
        if (!known && closed == FALSE && isHandle(handle)) ++ledger.wrongClosings;
        return closed;
    });
    opens(ledger, imports::FindFirstFileW, "search");
    closes(ledger, imports::FindClose, "search");
    opens(ledger, imports::_wfopen, "file");
    opens(ledger, imports::_wfsopen, "file");
    closes(ledger, imports::fclose, "file");
    keepRegistry(ledger);
    keepLocalMemory(ledger);
    keepModules(ledger);
}

}  // namespace sweep
