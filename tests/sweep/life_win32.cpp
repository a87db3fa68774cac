#include "tests/sweep/life_win32.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "source/serviceControl.h"
#include "source/tService.h"
#include "source/zusysapi.h"
#include "tests/support/imports_win32.h"
#include "tests/support/plugins.h"

int hostMain(int argumentCount, char** arguments);

namespace sweep {
namespace {

constexpr const char* previousStatus = "what an earlier life has left\r\n";

void* const statusHandle = reinterpret_cast<void*>(0x57A7);

std::string description(const std::string& name, const std::string& library, const std::string& initialize,
                        const std::string& more = "") {
    return "[Service]\nName=" + name + "\nPath=" + support::pluginPath(library) + "\nInitialize=" + initialize +
           "\nStop=StopOk\nCleanup=CleanupOk\n" + more;
}

/// Reads a file past all stand-ins. Returns an empty text if there is none.
std::string contentOf(const std::filesystem::path& path) {
    const HANDLE file = imports::CreateFileW.real(path.c_str(), GENERIC_READ, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    std::string content(65'536, '\0');
    DWORD size = 0;
    ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &size, nullptr);
    imports::CloseHandle.real(file);
    content.resize(size);
    return content;
}

std::string onDisk(const std::string& text) {
    std::string content;
    for (const char character : text) {
        if (character == '\n') content += '\r';
        content += character;
    }
    return content;
}

std::string toText(const SERVICE_STATUS& status) {
    char text[96];
    std::snprintf(text, sizeof(text), "%lu %lu %lu %lu %ld %lu %lu", status.dwServiceType, status.dwCurrentState,
                  status.dwControlsAccepted, status.dwWin32ExitCode,
                  static_cast<long>(status.dwServiceSpecificExitCode), status.dwCheckPoint, status.dwWaitHint);
    return text;
}

}  // namespace

const tPlugin* find(const std::vector<tPlugin>& plugins, const std::string& name) {
    const auto found = std::ranges::find(plugins, name, &tPlugin::name);
    return found == plugins.end() ? nullptr : &*found;
}

bool lacksADependency(const tPlugin& plugin, const tOutcome& life) {
    return std::ranges::any_of(plugin.dependencies, [&](const std::string& name) {
        const tPlugin* const dependency = find(life.plugins, name);
        return dependency == nullptr || dependency->initCode < 0;
    });
}

std::vector<std::string> reportsOf(const tOutcome& life) {
    if (!life.startedService) return {"16 2 0 0 0 0 0", "16 1 0 1066 -1 0 0"};
    std::vector<std::string> reports{"16 2 0 0 0 0 0", "16 4 5 0 0 0 0"};
    if (life.waits > 0) reports.emplace_back("16 3 0 0 0 1 5000");  // a stop was requested
    reports.insert(reports.end(), {"16 3 0 0 0 2 5000", "16 1 0 0 0 0 0"});
    return reports;
}

std::string testName(const testing::TestParamInfo<tScenario>& scenario) {
    std::string name = scenario.param.name;
    std::erase_if(name, [](unsigned char character) { return std::isalnum(character) == 0; });
    return name;
}

tLives::tLives(const tScenario& scenario)
    : scenario_(scenario),
      control_([this] {
          standInForControl();
          standInForLibraries();
      }),
      books_([this] { keepLedger(ledger_); }),
      faults_(ledger_) {
    if (scenario_.plugins == noSharedDirectory) world_.places.sharedDirectory.reset();
    describePlugins();
    // Loaded again, so that no life has to read it from the disk.
    imports::LoadLibraryExA.real(support::pluginPath("behaviours").c_str(), nullptr, 0);
    watch();
    watchStatusFile();
}

tLives::~tLives() {
    imports::ImportBase::restoreAll();
    if (held_ != nullptr) imports::CloseHandle.real(held_);
}

/// Every third plug-in depends on the one before it.
void tLives::describePlugins() {
    for (int i = 0; i < scenario_.plugins; ++i) {
        const std::string name = std::string("P") + static_cast<char>('a' + i);
        const std::string before = std::string("P") + static_cast<char>('a' + i - 1);
        world_.describe(name + ".ini", description(name, "behaviours", i % 3 == 1 ? "InitWarning3" : "InitOk",
                                                   (i % 3 == 2 ? "Dependencies=" + before + "\n" : "") +
                                                       (i % 2 == 0 ? "Requires=3\n" : "")));
    }
    if (!scenario_.badFiles) return;
    world_.describe("0 malformed.ini", "[Service]\nno equals sign here\n");
    world_.describe("1 missing.ini", description("Missing", "no such library", "InitOk"));
    world_.describe("2 refusing.ini", description("Refusing", "behaviours", "InitFails7"));
    world_.describe("3 behind.ini", description("Behind", "behaviours", "InitOk", "Dependencies=Refusing\n"));
    world_.describe("4 deploys.ini", description("Deploys", "behaviours", "InitOk", "Requires=2\n"));
    const std::string held = world_.describe("5 held.ini", description("Held", "behaviours", "InitOk"));
    const std::wstring path = std::filesystem::path(held).native();
    held_ = imports::CreateFileW.real(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

/// Stands in for the manager, the console, and the user who asks the product to stop.
void tLives::standInForControl() {
    imports::StartServiceCtrlDispatcherA.replace([this](const SERVICE_TABLE_ENTRYA* table) {
        if (!scenario_.service) {
            imports::SetLastError.real(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT);
            return FALSE;
        }
        char* arguments[] = {table->lpServiceName, nullptr};
        const allocations::tProductCall call;
        table->lpServiceProc(1, arguments);
        return TRUE;
    });
    imports::RegisterServiceCtrlHandlerA.replace(
        [](auto...) { return static_cast<SERVICE_STATUS_HANDLE>(statusHandle); });
    imports::SetServiceStatus.replace([this](SERVICE_STATUS_HANDLE, LPSERVICE_STATUS status) {
        outcome_.reports.push_back(toText(*status));
        return TRUE;
    });
    imports::SetConsoleCtrlHandler.replace([](auto...) { return TRUE; });
    imports::SetSecurityInfo.replace([](auto...) { return DWORD{ERROR_SUCCESS}; });
    imports::WaitForSingleObject.replace([this](HANDLE event, DWORD milliseconds) -> DWORD {
        if (milliseconds != INFINITE || gService == nullptr)
            return imports::WaitForSingleObject.real(event, milliseconds);
        // A request may be lost with the call that carries it, so there is a second one.
        for (int request = 0; request < 2; ++request) {
            const allocations::tProductCall call;
            if (scenario_.service) serviceControlHandler(SERVICE_CONTROL_STOP);
            if (!scenario_.service) runConsoleHandler(CTRL_C_EVENT);
            if (imports::WaitForSingleObject.real(event, 0) == WAIT_OBJECT_0) break;
        }
        return WAIT_OBJECT_0;
    });
}

/// Lets every life load shell32 as its first call does, and a machine without the framework know no search flags.
void tLives::standInForLibraries() {
    imports::GetModuleHandleW.replace([](LPCWSTR name) -> HMODULE {
        const bool shell = name != nullptr && std::wstring_view(name).ends_with(L"shell32.dll");
        return shell ? nullptr : imports::GetModuleHandleW.real(name);
    });
    imports::LoadLibraryExW.replace([](LPCWSTR path, HANDLE file, DWORD flags) -> HMODULE {
        if (!std::wstring_view(path).ends_with(L"zusysapi.dll")) return imports::LoadLibraryExW.real(path, file, flags);
        imports::SetLastError.real(ERROR_MOD_NOT_FOUND);
        return nullptr;
    });
    imports::LoadLibraryExA.replace([this, inner = imports::LoadLibraryExA.current()](auto name, auto... more) {
        const HMODULE module = inner(name, more...);
        const bool noFlags = module == nullptr && scenario_.deployment == tDeployment::missing &&
                             std::string_view(name) == nZusysapi::libraryName;
        if (noFlags) imports::SetLastError.real(ERROR_INVALID_PARAMETER);
        return module;
    });
}

/// Around everything else, so that it sees calls that are made to fail.
void tLives::watch() {
    imports::WaitForSingleObject.replace(
        [this, inner = imports::WaitForSingleObject.current()](HANDLE event, DWORD milliseconds) {
            if (milliseconds == INFINITE && gService != nullptr) ++outcome_.waits;
            return inner(event, milliseconds);
        });
    imports::SetConsoleCtrlHandler.replace(
        [this, inner = imports::SetConsoleCtrlHandler.current()](PHANDLER_ROUTINE handler, BOOL add) {
            capture();
            const BOOL result = inner(handler, add);
            outcome_.lastError = imports::GetLastError.real();
            return result;
        });
    imports::SetServiceStatus.replace([this, inner = imports::SetServiceStatus.current()](auto... arguments) {
        capture();
        return inner(arguments...);
    });
    // The last status file is written, and its folder asked for, after everything else.
    imports::SHGetFolderPathW.replace([this, inner = imports::SHGetFolderPathW.current()](auto... arguments) {
        capture();
        return inner(arguments...);
    });
}

void tLives::watchStatusFile() {
    imports::fwrite.replace(
        [this, inner = imports::fwrite.current()](const void* text, std::size_t size, std::size_t count, FILE* file) {
            written_.push_back(onDisk(std::string(static_cast<const char*>(text), size * count)));
            const std::size_t result = inner(text, size, count, file);
            lookAtStatus();
            return result;
        });
    const auto lookAfter = [this](auto& door) {
        door.replace([this, inner = door.current()](auto... arguments) {
            const auto result = inner(arguments...);
            const DWORD error = imports::GetLastError.real();
            lookAtStatus();
            imports::SetLastError.real(error);
            return result;
        });
    };
    lookAfter(imports::_wfsopen);
    lookAfter(imports::_wremove);
    lookAfter(imports::_wrename);
    lookAfter(imports::fclose);
}

/// Looks at the status file as a reader in another process would.
void tLives::lookAtStatus() {
    const std::string content = contentOf(world_.statusFolder / "zuZiptraRemoteService.status");
    const bool whole = content.empty() || content == previousStatus ||
                       std::find(written_.begin(), written_.end(), content) != written_.end();
    if (!whole) outcome_.statusWhole = false;
}

void tLives::capture() {
    if (gService == nullptr) return;
    outcome_.startedService = true;
    outcome_.messages = gService->messages;
    outcome_.mask = gService->allowedMask;
    outcome_.plugins.clear();
    for (const tPluginEntry& entry : gService->pluginManager.entries()) {
        outcome_.plugins.push_back({entry.description.name, entry.description.dependencies, entry.initCode,
                                    entry.stopCode, entry.cleanupCode});
    }
}

void tLives::plantStatus() const {
    std::filesystem::remove(world_.statusFolder / ".zuZiptraRemoteService.status.tmp");
    std::ofstream(world_.statusFolder / "zuZiptraRemoteService.status", std::ios::binary) << previousStatus;
}

/// Unloads what the product was prevented from unloading, or leaves to the end of its process.
void tLives::releaseModules() {
    for (void* module : ledger_.open("module")) imports::FreeLibrary.real(static_cast<HMODULE>(module));
}

tOutcome tLives::live(std::size_t call, int nth, bool forEver) {
    return live([&] {
        faults_.arm(call, nth, forEver);
        runHost();
        outcome_.injected = faults_.injected();
        outcome_.calls = faults_.calls();
        faults_.disarm();
    });
}

tOutcome tLives::liveWithoutMemory(int nth, allocations::tHowLong howLong) {
    return live([&] {
        allocations::startFailing(nth, howLong);
        runHost();
        const allocations::tCounts counts = allocations::stopFailing();
        outcome_.injected = counts.refused;
        outcome_.requests = counts.requests;
        if (allocations::held() > 0) outcome_.leaks.emplace_back("memory");
    });
}

void tLives::runHost() {
    char program[] = "host.exe";
    char* arguments[] = {program, nullptr};
    outcome_.exitCode = hostMain(1, arguments);
}

tOutcome tLives::live(const std::function<void()>& life) {
    support::tScriptedFramework framework;
    framework.setting = scenario_.deployment == tDeployment::forbidden ? 0 : 1;
    if (scenario_.deployment == tDeployment::failing) framework.outcome = [](int, int step) { return step == 4; };
    const bool missing = scenario_.deployment == tDeployment::missing;
    world_.deployment.entry = missing ? nullptr : support::tScriptedFramework::instantiate;
    gStatusLock = 0;
    gConsoleInterrupted = 0;
    plantStatus();
    written_.clear();
    ledger_.clear();
    outcome_ = {};
    life();

    const std::string status = contentOf(world_.statusFolder / "zuZiptraRemoteService.status");
    const std::string temporary = contentOf(world_.statusFolder / ".zuZiptraRemoteService.status.tmp");
    outcome_.statusPresent = !status.empty();
    outcome_.temporaryWhole = std::find(written_.begin(), written_.end(), temporary) != written_.end();
    outcome_.statusCurrent = !written_.empty() && status == written_.back();
    const std::vector<std::string> leaks = ledger_.leaks();
    outcome_.leaks.insert(outcome_.leaks.end(), leaks.begin(), leaks.end());
    outcome_.wrongClosings = ledger_.wrongClosings;
    outcome_.referencesHeld = framework.held();
    releaseModules();
    return outcome_;
}

}  // namespace sweep
