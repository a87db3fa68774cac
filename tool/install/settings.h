#pragma once

#include <cstdint>
#include <string_view>

/// What `install` sets.
namespace nInstall {

inline constexpr std::string_view serviceName = "zuZiptraRemoteService";
inline constexpr std::string_view programName = "zuZiptraRemoteService.exe";
inline constexpr std::string_view displayName = "ZU-Ziptra Remote Service";
inline constexpr std::string_view description =
    "Starts the plug-ins for remote configuration and deployment. 'ziptra status' shows what became of them.";

// Recovery actions: restart after 5, 30 and, from the third time on, 120 seconds; the count starts over after a day.
inline constexpr std::string_view recovery = "reset= 86400 actions= restart/5000/restart/30000/restart/120000";
inline constexpr unsigned recoveryResetSeconds = 86'400;
inline constexpr unsigned restartDelaysMs[] = {5000, 30'000, 120'000};

inline constexpr std::string_view sharedDirectoryKey = R"(HKLM\SOFTWARE\Corvell\Common\Installer)";
inline constexpr std::string_view sharedDirectoryValue = "ZUSHAREDDIR64";
// Remembers that the value above is ours, for `uninstall`. The system deletes this key together with the service.
inline constexpr std::string_view parametersKey =
    R"(HKLM\SYSTEM\CurrentControlSet\Services\zuZiptraRemoteService\Parameters)";
inline constexpr std::string_view installedValue = "InstalledSharedDirectory";
inline constexpr std::string_view dumpsKey =
    R"(HKLM\SOFTWARE\Microsoft\Windows\Windows Error Reporting\LocalDumps\zuZiptraRemoteService.exe)";

// Access lists, protected from those of the folders above. The Administrators own the folder; they and SYSTEM may do
// everything, users read and run what is in it.
inline constexpr std::string_view folderAccess = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)";
// Dumps contain what the service had in memory: users must not read them.
inline constexpr std::string_view dumpsAccess = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

// The system's error for a setting that an older one lacks (ERROR_INVALID_LEVEL).
inline constexpr std::uint32_t unknownSetting = 124;

}  // namespace nInstall
