#include "tool/install/plan.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "ini/nameIndex.h"
#include "source/statusFile.h"
#include "stdpath/stdpath.h"
#include "tool/check/wording.h"
#include "tool/format.h"
#include "tool/install/settings.h"
#include "tool/pe/windowsPath.h"

namespace nInstall {
namespace {

using nWording::quoted;
using tSteps = std::vector<tStep>;

bool sameText(std::string_view a, std::string_view b) { return nIni::sameName(a, b, false); }

/// Returns the path as the host uses it, without "..", "." and repeated separators. Throws tCannot unless it is one of
/// a folder on a drive.
std::string fullPath(const std::string& what, const std::string& path) {
    std::string trimmed = path;
    std::replace(trimmed.begin(), trimmed.end(), '/', '\\');
    nStdPath::trimPath(trimmed);
    const std::vector<std::string> parts = nPe::partsOf(trimmed);
    const bool onDrive = trimmed.size() > 3 && trimmed[1] == ':' && trimmed[2] == '\\' && parts.size() > 1;
    if (!onDrive) throw tCannot(fmt::format("{}, {}, is not the full path of a folder on a drive", what, quoted(path)));
    std::string full = parts[0];
    for (std::size_t i = 1; i < parts.size(); ++i) full += '\\' + parts[i];
    return full;
}

/// Throws tCannot if the path looks as if it contained a variable: Windows replaces them in some settings.
void refuseVariables(const std::string& path) {
    if (std::count(path.begin(), path.end(), '%') < 2) return;
    throw tCannot(path + " contains '%' twice, between which Windows would look for the name of a variable");
}

/// What all commands need of a service that exists.
void refuseForeign(const tMachine& machine) {
    if (!machine.service) return;
    if (machine.service->beingDeleted) {
        throw tCannot(
            "The service zuZiptraRemoteService is marked for deletion (1072): close the programs that show services, "
            "such as services.msc, or restart Windows");
    }
    if (!machine.service->otherProgram.empty()) {
        throw tCannot("The service zuZiptraRemoteService runs another program, " + machine.service->otherProgram +
                      ": use the 'ziptra' beside that");
    }
}

void add(tSteps& steps, tAction action, std::string_view target = {}, std::string_view value = {},
         std::string_view name = {}, std::string_view type = {}) {
    steps.push_back({action, std::string(target), std::string(value), std::string(name), std::string(type)});
}

bool isRunning(const tMachine& machine) { return machine.service && !machine.service->stopped; }

class tInstallPlan {
public:
    tInstallPlan(const tRequest& request, const tMachine& machine) : request_(request), machine_(machine) {}

    tSteps make() {
        if (!machine_.programExists) throw tCannot("There is no " + machine_.program + ", which the service would run");
        if (machine_.program.starts_with(R"(\\)")) {
            throw tCannot(machine_.program + " is on another machine: copy it to a drive of this one first");
        }
        refuseVariables(machine_.program);
        const std::string shared = sharedDirectory();
        addFolder(shared, folderAccess, false);
        addFolder(shared + R"(\ZiptraRemoteService)", folderAccess, true);
        addFolder(shared + R"(\ZiptraRemoteService\plugins)", folderAccess, true);
        addFolder(machine_.statusDirectory, folderAccess, true);
        deleteUntrustedStatusFiles();
        addService();
        addSharedDirectory(shared);
        if (!request_.crashDumps.empty()) addCrashDumps();
        if (request_.kind == tKind::install && !isRunning(machine_)) add(steps_, tAction::startService);
        return std::move(steps_);
    }

private:
    [[nodiscard]] std::string sharedDirectory() const {
        constexpr const char* option = "The argument of --shared-dir";
        const auto present = machine_.registryValue(sharedDirectoryKey, sharedDirectoryValue);
        if (!present) {
            const bool asked = !request_.sharedDirectory.empty();
            return asked ? fullPath(option, request_.sharedDirectory) : machine_.usualSharedDirectory;
        }
        std::string path = fullPath("The registry value ZUSHAREDDIR64", *present);
        if (!request_.sharedDirectory.empty() && !sameText(fullPath(option, request_.sharedDirectory), path)) {
            throw tCannot("The shared directory of this machine is " + path +
                          ", which other programs may use: leave out --shared-dir, or change ZUSHAREDDIR64 first");
        }
        return path;
    }

    /// Creates what is missing of the path. An existing folder that is ours gets its access list.
    void addFolder(const std::string& path, std::string_view access, bool ours) {
        constexpr std::size_t root = 3;
        for (std::size_t end = path.find('\\', root); end != std::string::npos; end = path.find('\\', end + 1)) {
            addMissing(path.substr(0, end), access);
        }
        const tFolder state = addMissing(path, access);
        if (ours && state == tFolder::link) throw tCannot(path + " is a link to another folder: remove it first");
        const bool set = state == tFolder::exposed || (state == tFolder::good && request_.kind == tKind::repair);
        if (ours && set) add(steps_, tAction::setAccess, path, access);
    }

    tFolder addMissing(const std::string& path, std::string_view access) {
        const tFolder state = machine_.folder(path);
        if (state == tFolder::noFolder) throw tCannot(path + " is a file, but should be a folder");
        const bool planned =
            std::any_of(steps_.begin(), steps_.end(), [&](const tStep& s) { return s.target == path; });
        if (state == tFolder::missing && !planned) add(steps_, tAction::createFolder, path, access);
        return state;
    }

    /// A file that users have put in place of one of the host's would remain theirs. A link in place of the temporary
    /// file, to which the service writes, looks as good as the file that it leads to, so that one is always deleted.
    void deleteUntrustedStatusFiles() {
        const auto [status, temporary] = statusFileNames();
        const bool exposed = machine_.folder(machine_.statusDirectory) == tFolder::exposed;
        const tFile state = statusFileState(status);
        if (state == tFile::exposed || (exposed && state == tFile::good)) {
            add(steps_, tAction::deleteFile, machine_.statusDirectory + '\\' + status,
                isRunning(machine_) ? "restart the service, which then writes it again" : "");
        }
        if (statusFileState(temporary) != tFile::missing) {
            add(steps_, tAction::deleteFile, machine_.statusDirectory + '\\' + temporary);
        }
    }

    [[nodiscard]] tFile statusFileState(const std::string& name) const {
        const std::string path = machine_.statusDirectory + '\\' + name;
        const tFile state = machine_.file(path);
        if (state == tFile::folder) throw tCannot(path + " is a folder, but should be a file: remove it first");
        return state;
    }

    void addService() {
        const std::string commandLine = '"' + machine_.program + '"';
        const bool demand = request_.start == "demand";
        const std::string start = demand ? "demand" : "auto";
        if (!machine_.service) add(steps_, tAction::createService, commandLine, start);
        // As it has just been created.
        const tService created{commandLine, "", false, true, start, false, "", false, ""};
        const tService present = machine_.service.value_or(created);
        if (present.commandLine != commandLine) add(steps_, tAction::setCommandLine, commandLine);
        if (present.start != start) add(steps_, tAction::setStart, {}, start);
        const bool delayed = request_.start == "delayed";
        if (!demand && present.delayed && *present.delayed != delayed) {
            add(steps_, tAction::setDelayed, {}, delayed ? "delayed-auto" : "auto");
        }
        if (present.recovery && *present.recovery != recovery) add(steps_, tAction::setRecovery);
        if (present.recoveryOnError && !*present.recoveryOnError) add(steps_, tAction::setRecoveryOnError);
        if (present.description != description) add(steps_, tAction::setDescription);
    }

    void setValue(std::string_view key, std::string_view name, std::string_view type, const std::string& value) {
        if (machine_.registryValue(key, name) == value) return;
        add(steps_, tAction::setRegistryValue, key, value, name, type);
    }

    void addSharedDirectory(const std::string& path) {
        if (machine_.registryValue(sharedDirectoryKey, sharedDirectoryValue)) return;
        setValue(parametersKey, installedValue, "REG_SZ", path);
        setValue(sharedDirectoryKey, sharedDirectoryValue, "REG_SZ", path);
    }

    void addCrashDumps() {
        const std::string folder = fullPath("The argument of --crash-dumps", request_.crashDumps);
        refuseVariables(folder);
        const tFolder state = machine_.folder(folder);
        if (state == tFolder::link) throw tCannot(folder + " is a link to another folder: name a new one");
        if (state == tFolder::exposed) {
            throw tCannot("Others than administrators can change the folder " + folder +
                          ", and could read the dumps: name a new one");
        }
        addFolder(folder, dumpsAccess, false);
        setValue(dumpsKey, "DumpFolder", "REG_EXPAND_SZ", folder);
        setValue(dumpsKey, "DumpCount", "REG_DWORD", "10");
        setValue(dumpsKey, "DumpType", "REG_DWORD", "1");  // small ones: which plug-in, and where
    }

    const tRequest& request_;
    const tMachine& machine_;
    tSteps steps_;
};

/// Deletes the files that the host writes. A running service may write them when it stops, even if there are none
/// before. Returns whether nothing else is in their folder.
bool deleteStatusFiles(const tMachine& machine, bool mayFollow, tSteps& steps) {
    std::vector<std::string> others = machine.statusFiles;
    for (const std::string& name : statusFileNames()) {
        const std::string path = machine.statusDirectory + '\\' + name;
        const bool exists = std::find(others.begin(), others.end(), name) != others.end();
        if (!exists && !mayFollow) continue;
        if (exists && machine.file(path) == tFile::folder) continue;
        std::erase(others, name);
        add(steps, tAction::deleteFile, path);
    }
    return others.empty();
}

tSteps uninstallPlan(const tMachine& machine) {
    tSteps steps;
    if (isRunning(machine)) add(steps, tAction::stopService);
    const tFolder state = machine.folder(machine.statusDirectory);
    const bool hasFolder = state == tFolder::good || state == tFolder::exposed;
    // A program may keep a file open. Up to here, a start of the service takes everything back.
    const bool onlyOurs = deleteStatusFiles(machine, isRunning(machine) && hasFolder, steps);
    // Before the service, with which the system deletes what says that the value is ours.
    const auto installed = machine.registryValue(parametersKey, installedValue);
    if (installed && installed == machine.registryValue(sharedDirectoryKey, sharedDirectoryValue)) {
        add(steps, tAction::deleteRegistryValue, sharedDirectoryKey, {}, sharedDirectoryValue);
    }
    if (machine.service) add(steps, tAction::deleteService);
    if (machine.hasDumpsKey) add(steps, tAction::deleteRegistryKey, dumpsKey);
    if (hasFolder && onlyOurs) add(steps, tAction::deleteFolder, machine.statusDirectory);
    return steps;
}

/// Returns what precedes the arguments.
std::string firstPart(const std::string& commandLine) {
    if (commandLine.starts_with('"')) return commandLine.substr(1, commandLine.find('"', 1) - 1);
    constexpr std::string_view extension = ".exe";
    for (std::size_t at = 0; at + extension.size() <= commandLine.size(); ++at) {
        const std::size_t end = at + extension.size();
        const bool ends = end == commandLine.size() || commandLine[end] == ' ';
        if (ends && sameText(commandLine.substr(at, extension.size()), extension)) return commandLine.substr(0, end);
    }
    return commandLine.substr(0, commandLine.find(' '));
}

}  // namespace

std::vector<tStep> plan(const tRequest& request, const tMachine& machine) {
    refuseForeign(machine);
    if (request.kind == tKind::uninstall) return uninstallPlan(machine);
    if (request.kind == tKind::repair && !machine.service) {
        throw tCannot("There is no service zuZiptraRemoteService: 'ziptra install' creates it");
    }
    return tInstallPlan(request, machine).make();
}

std::array<std::string, 2> statusFileNames() {
    const std::string status = nStatusFile::fileName;
    return {status, '.' + status + ".tmp"};
}

std::string programOf(const std::string& commandLine) {
    const std::string program = firstPart(commandLine);
    const std::string name = nPe::fileNameOf(program);
    return name.empty() || name.find('.') != std::string::npos ? program : program + ".exe";
}

}  // namespace nInstall
