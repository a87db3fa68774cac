#pragma once

#include <map>
#include <string>
#include <vector>

#include "tool/install/plan.h"
#include "tool/install/settings.h"

namespace support {

/// A machine without the service, on whose drive C the usual folders exist.
struct tFakeMachine {
    nInstall::tMachine machine;
    std::map<std::string, nInstall::tFolder> folders{{"C:\\Program Files\\Common Files", nInstall::tFolder::good},
                                                     {"C:\\Program Files", nInstall::tFolder::good},
                                                     {"C:\\ProgramData", nInstall::tFolder::good}};
    std::map<std::string, nInstall::tFile> files;
    std::map<std::string, std::string> values;  ///< "KEY\NAME"

    tFakeMachine() {
        machine.program = R"(C:\Program Files\Corvell\Ziptra Remote Service\zuZiptraRemoteService.exe)";
        machine.usualSharedDirectory = R"(C:\Program Files\Common Files\Corvell)";
        machine.statusDirectory = R"(C:\ProgramData\Corvell)";
        machine.folder = [this](const std::string& path) {
            return folders.contains(path) ? folders.at(path) : nInstall::tFolder::missing;
        };
        machine.file = [this](const std::string& path) {
            return files.contains(path) ? files.at(path) : nInstall::tFile::missing;
        };
        machine.registryValue = [this](std::string_view key, std::string_view name) -> std::optional<std::string> {
            const auto value = values.find(std::string(key) + '\\' + std::string(name));
            return value == values.end() ? std::nullopt : std::optional(value->second);
        };
    }
    ~tFakeMachine() = default;
    tFakeMachine(const tFakeMachine&) = delete;
    tFakeMachine& operator=(const tFakeMachine&) = delete;

    void setValue(std::string_view key, std::string_view name, const std::string& data) {
        values[std::string(key) + '\\' + std::string(name)] = data;
    }

    /// Does what the steps say, as far as later plans depend on it.
    void perform(const std::vector<nInstall::tStep>& steps) {
        for (const nInstall::tStep& step : steps) perform(step);
    }

    void perform(const nInstall::tStep& step) {
        using nInstall::tAction;
        if (step.action == tAction::createService) {
            machine.service = nInstall::tService{step.target, "", false, true, step.value, false, "", false, ""};
        }
        nInstall::tService ignored;
        nInstall::tService& service = machine.service ? *machine.service : ignored;
        switch (step.action) {
            case tAction::createFolder:
            case tAction::setAccess: folders[step.target] = nInstall::tFolder::good; break;
            case tAction::setCommandLine: service.commandLine = step.target; break;
            case tAction::setStart: service.start = step.value; break;
            case tAction::setDelayed: service.delayed = step.value == "delayed-auto"; break;
            case tAction::setRecovery: service.recovery = nInstall::recovery; break;
            case tAction::setRecoveryOnError: service.recoveryOnError = true; break;
            case tAction::setDescription: service.description = nInstall::description; break;
            case tAction::setRegistryValue: setValue(step.target, step.name, step.value); break;
            case tAction::startService: service.stopped = false; break;
            case tAction::stopService: service.stopped = true; break;
            case tAction::deleteService:
                machine.service.reset();
                values.erase(std::string(nInstall::parametersKey) + '\\' + std::string(nInstall::installedValue));
                break;
            case tAction::deleteRegistryValue: values.erase(step.target + '\\' + step.name); break;
            case tAction::deleteRegistryKey: machine.hasDumpsKey = false; break;
            case tAction::deleteFile:
                files.erase(step.target);
                std::erase(machine.statusFiles, step.target.substr(step.target.rfind('\\') + 1));
                break;
            case tAction::deleteFolder: folders.erase(step.target); break;
            default: break;
        }
    }
};

}  // namespace support
