#include "tests/catalogues/world.h"

#include <algorithm>

namespace catalogues {
namespace {

using endtoend::ownExecutable;
using endtoend::readFile;
using endtoend::tHandle;
using endtoend::tPath;
using endtoend::tProcess;
using endtoend::tStatusFile;
using endtoend::tStatusWrites;
using endtoend::utf8;
using endtoend::wide;
using endtoend::writeFile;

constexpr const wchar_t* hostName = L"zuZiptraRemoteService.exe";
constexpr const wchar_t* toolName = L"ziptra.exe";
constexpr const wchar_t* frameworkName = L"zusysapi.dll";

void copyBuilt(const wchar_t* name, const tPath& folder) {
    std::filesystem::copy_file(ownExecutable().parent_path() / name, folder / name,
                               std::filesystem::copy_options::overwrite_existing);
}

/// Opens the file so that nobody else can.
tHandle lock(const tPath& file) {
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    endtoend::require(handle != INVALID_HANDLE_VALUE, "CreateFileW");
    return tHandle(handle);
}

struct tVariable {
    const wchar_t* name;
    std::wstring value;
};

/// Tells the stand-in for the framework what to do.
tVariable deploymentVariable(const tCatalogue& catalogue) {
    constexpr std::uint64_t connectingSteps = 5;
    switch (catalogue.deployment) {
        case tDeployment::allowed: return {L"ZUSYSAPI_SETTING", L"1"};
        case tDeployment::forbidden: return {L"ZUSYSAPI_SETTING", L"0"};
        case tDeployment::notFound: return {L"ZUSYSAPI_FAIL_STEP", L"6"};
        default: return {L"ZUSYSAPI_FAIL_STEP", std::to_wstring(1 + catalogue.seed % connectingSteps)};
    }
}

std::wstring quoted(const tPath& path) { return L'"' + path.native() + L'"'; }

}  // namespace

tWorld::tWorld() : libraries_(makeLibraries(stage_)) {
    copyBuilt(toolName, stage_.executable().parent_path());
    furnishExecutableFolder(stage_, stage_.executable().parent_path());
    prepareScripted();
    // Relative paths must not find anything by way of the current directory, which is not that of a service.
    const tPath empty = stage_.root() / L"empty" / L"below";
    std::filesystem::create_directories(empty);
    std::filesystem::current_path(empty);
}

/// A current directory cannot be removed.
tWorld::~tWorld() { std::filesystem::current_path(ownExecutable().parent_path()); }

void tWorld::prepareScripted() const {
    const tPath scripted = stage_.root() / L"scripted";
    std::filesystem::create_directories(scripted);
    for (const wchar_t* name : {hostName, toolName, frameworkName}) copyBuilt(name, scripted);
    static_cast<void>(stage_.addLibrary(scripted / L"scripted.dll", L"scripted.dll"));
    endtoend::rebindImport(scripted / hostName, "ADVAPI32.dll", "scripted.dll");
    furnishExecutableFolder(stage_, scripted);
}

tPath tWorld::folder(const tCatalogue& catalogue) const {
    const bool needsScript = catalogue.asService || catalogue.deployment == tDeployment::noFramework;
    return needsScript ? stage_.root() / L"scripted" : stage_.executable().parent_path();
}

void tWorld::arrange(const tCatalogue& catalogue) {
    locks_.clear();
    for (const auto& entry : std::filesystem::directory_iterator(stage_.descriptions())) {
        std::filesystem::remove_all(entry.path());
    }
    for (const tEntry& entry : catalogue.entries) {
        const tPath path = stage_.descriptions() / wide(entry.name);
        if (entry.kind == tEntry::tKind::folder) {
            std::filesystem::create_directories(path);
            continue;
        }
        writeFile(path, entry.bytes);
        if (entry.kind == tEntry::tKind::locked) locks_.push_back(lock(path));
    }
    setVariables(catalogue);
}

tAnswer tWorld::check(const tCatalogue& catalogue, const std::wstring& options) const {
    const tPath tool = folder(catalogue) / toolName;
    std::wstring commandLine = quoted(tool) + L" check " + options;
    if (catalogue.givesAllowed) {
        commandLine += L" --allowed " + std::to_wstring(allowedMask(catalogue.deployment));
    }
    if (catalogue.givesDirectory) commandLine += L" " + quoted(stage_.descriptions());
    const tProcess process(tool, commandLine);
    const DWORD exitCode = process.exitCode();
    return {exitCode, process.output(), process.errors()};
}

/// For a service, which does not inherit the variables of this program, scripted.dll sets them.
void tWorld::setVariables(const tCatalogue& catalogue) {
    const tVariable variable = deploymentVariable(catalogue);
    deployment_.reset();
    deployment_.emplace(variable.name, variable.value);
    const std::wstring lines = L"TEST_PLUGIN_LOG=" + callLog().native() + L"\n" + variable.name + L"=" + variable.value;
    writeFile(folder(catalogue) / L"environment", utf8(lines));
}

tHosting tWorld::result() const {
    const std::string bytes = readFile(tStatusFile::path());
    return {bytes, readStatusText(bytes), readFile(callLog())};
}

tHosting tWorld::hostInForeground(const tPath& executable) {
    tStatusWrites writes;
    const tProcess process(executable);
    writes.waitFor(3);  // constructed, prepared, started
    tHosting hosting = result();
    process.interrupt();
    process.exitCode();
    return hosting;
}

tHosting tWorld::hostAsService(const tPath& executable) {
    if (!service_) service_.emplace(executable);
    tStatusWrites writes;
    service_->start();
    writes.waitFor(3);
    tHosting hosting = result();
    service_->stop();
    return hosting;
}

tHosting tWorld::host(const tCatalogue& catalogue) {
    std::filesystem::remove(callLog());
    const tPath executable = folder(catalogue) / hostName;
    return catalogue.asService ? hostAsService(executable) : hostInForeground(executable);
}

}  // namespace catalogues
