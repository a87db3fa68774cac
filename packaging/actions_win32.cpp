// The custom actions of the MSI: what `ziptra repair` and `ziptra uninstall` do, in the installer's own process, so
// that its log contains their words. Each entry is named after its action in ziptra.wxs.
//
// The headers of the installer need <windows.h> first.
// clang-format off
#include <windows.h>
#include <msi.h>
#include <msiquery.h>
// clang-format on

#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "stdpath/path.h"
#include "tool/context.h"
#include "tool/install/installRun.h"

namespace {

using nInstall::tAction;
using nInstall::tCannot;
using nInstall::tKind;

constexpr const char* deferredActions[] = {"RepairService", "UndoService", "RemoveService", "StopService",
                                           "RestartService"};

std::wstring wide(const std::string& text) { return nStdPath::widePathFromUtf8(text); }

/// Returns an empty text if there is no such property.
std::string property(MSIHANDLE install, const std::string& name) {
    wchar_t none[1] = L"";
    DWORD size = 0;
    if (MsiGetPropertyW(install, wide(name).c_str(), none, &size) != ERROR_MORE_DATA) return {};
    std::wstring text(++size, L'\0');
    if (MsiGetPropertyW(install, wide(name).c_str(), text.data(), &size) != ERROR_SUCCESS) return {};
    return nStdPath::pathToUtf8(text.c_str());
}

void setProperty(MSIHANDLE install, const std::string& name, const std::string& value) {
    MsiSetPropertyW(install, wide(name).c_str(), wide(value).c_str());
}

/// Every line begins with "ziptra: ", so that it can be found in a log of thousands of lines.
void tell(MSIHANDLE install, INSTALLMESSAGE kind, const std::string& text) {
    constexpr std::string_view prefix = "ziptra: ";
    const std::string line = text.starts_with(prefix) ? text : std::string(prefix) + text;
    PMSIHANDLE record = MsiCreateRecord(1);
    MsiRecordSetStringW(record, 0, L"[1]");
    MsiRecordSetStringW(record, 1, wide(line).c_str());
    MsiProcessMessage(install, kind, record);
}

void tellLines(MSIHANDLE install, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) tell(install, INSTALLMESSAGE_INFO, line);
}

/// What a deferred action needs to know. It can read one property only.
struct tSettings {
    std::string folder;  ///< of the programs, without a backslash at its end
    std::string start;
    std::string sharedDirectory;
};

// Neither a path nor a start contains it.
constexpr char separator = '|';

std::string textOf(const tSettings& settings) {
    return settings.folder + separator + settings.start + separator + settings.sharedDirectory;
}

tSettings settingsOf(MSIHANDLE install) {
    std::istringstream data(property(install, "CustomActionData"));
    tSettings settings;
    std::getline(data, settings.folder, separator);
    std::getline(data, settings.start, separator);
    std::getline(data, settings.sharedDirectory, separator);
    return settings;
}

nInstall::tRequest requestOf(tKind kind, const tSettings& settings) {
    return {kind, settings.start, settings.sharedDirectory};
}

nInstall::tAccess accessTo(const tSettings& settings, bool readOnly) {
    constexpr unsigned limitSeconds = 120;  // as ziptra waits for a service
    return {"install", readOnly, limitSeconds, {}, settings.folder};
}

/// Calls the function. What it throws is the error that the installer shows and logs.
template <class Function>
UINT failingWithALine(MSIHANDLE install, Function function) {
    try {
        function();
        return ERROR_SUCCESS;
    } catch (const std::exception& failure) {
        tell(install, INSTALLMESSAGE_ERROR, failure.what());
        return ERROR_INSTALL_FAILURE;
    }
}

UINT run(MSIHANDLE install, tKind kind) {
    return failingWithALine(install, [=] {
        const tSettings settings = settingsOf(install);
        std::ostringstream out;
        std::ostringstream error;
        tContext context{out, error};
        nInstall::run(requestOf(kind, settings), nInstall::tOutput::text,
                      nInstall::thisSystem(accessTo(settings, false)), context);
        tellLines(install, out.str());
        if (context.exitCode != exitNothingFound) throw tCannot(error.str());
    });
}

/// Performs a step of the tool. Throws tCannot.
void perform(MSIHANDLE install, tAction action) {
    const nInstall::tSystem system = nInstall::thisSystem(accessTo(settingsOf(install), false));
    const nInstall::tStep step{action};
    if (const std::uint32_t error = system.perform(step)) throw tCannot(notDone(step) + ": " + system.reason(error));
}

/// Throws tCannot if what is to be installed cannot be installed on this machine.
void check(MSIHANDLE install, const tSettings& settings, nInstall::tMachine machine) {
    if (settings.start != "delayed" && settings.start != "auto" && settings.start != "demand") {
        throw tCannot("START must be delayed, auto or demand, not " + settings.start);
    }
    const bool ours = !property(install, "Installed").empty() || !property(install, "WIX_UPGRADE_DETECTED").empty();
    if (machine.service && !ours) {
        throw tCannot("The service zuZiptraRemoteService exists already, and no package has installed it (" +
                      machine.service->commandLine + "): remove it with 'ziptra uninstall' first");
    }
    if (machine.service && machine.service->start == "disabled") {
        throw tCannot(
            "The service zuZiptraRemoteService is disabled, and this would start it: enable it first, for "
            "example with 'sc config zuZiptraRemoteService start= delayed-auto'");
    }
    machine.programExists = true;  // it will
    (void)plan(requestOf(tKind::install, settings), machine);
}

}  // namespace

/// Before anything is changed: refuses what cannot be done, and prepares the other actions. Sets SERVICERUNS if the
/// service runs.
extern "C" __declspec(dllexport) UINT __stdcall CheckMachine(MSIHANDLE install) {
    return failingWithALine(install, [=] {
        tSettings settings{property(install, "INSTALLDIR"), property(install, "START"), property(install, "SHAREDDIR")};
        if (settings.folder.ends_with('\\')) settings.folder.pop_back();
        // Windows lets users repair what is installed: they must not choose where the plug-ins are.
        if (!property(install, "Installed").empty()) settings.sharedDirectory.clear();
        for (const char* const action : deferredActions) setProperty(install, action, textOf(settings));
        const nInstall::tMachine machine = nInstall::thisSystem(accessTo(settings, true)).lookAt();
        if (machine.service && !machine.service->stopped) setProperty(install, "SERVICERUNS", "1");
        if (property(install, "REMOVE") != "ALL") check(install, settings, machine);
    });
}

extern "C" __declspec(dllexport) UINT __stdcall StopService(MSIHANDLE install) {
    return failingWithALine(install, [=] { perform(install, tAction::stopService); });
}

/// A service that did not stop in time may do so now.
extern "C" __declspec(dllexport) UINT __stdcall RestartService(MSIHANDLE install) {
    return failingWithALine(install, [=] {
        perform(install, tAction::stopService);
        perform(install, tAction::startService);
    });
}

extern "C" __declspec(dllexport) UINT __stdcall RepairService(MSIHANDLE install) { return run(install, tKind::repair); }

extern "C" __declspec(dllexport) UINT __stdcall RemoveService(MSIHANDLE install) {
    return run(install, tKind::uninstall);
}

extern "C" __declspec(dllexport) UINT __stdcall UndoService(MSIHANDLE install) {
    return run(install, tKind::uninstall);
}
