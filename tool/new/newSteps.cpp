#include "tool/new/newSteps.h"

#include <algorithm>

#include "tool/format.h"

namespace nNew {
namespace {

bool needsQuotes(std::string_view text) {
    const auto isPlain = [](char c) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        return isLetter || (c >= '0' && c <= '9') || std::string_view("/\\:._-+=").find(c) != std::string_view::npos;
    };
    return !std::ranges::all_of(text, isPlain);
}

/// Returns the text as one argument for sh.
std::string quotedForSh(const std::string& text) {
    if (!needsQuotes(text)) return text;
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

/// Returns the text as one argument for cmd and PowerShell, which have only these quotes in common.
std::string quotedForWindows(const std::string& text) { return needsQuotes(text) ? '"' + text + '"' : text; }

/// Returns the command that runs the plug-in with the SDK's tool. Wine does not look for programs in PATH.
std::string runWithWine(const std::string& sdk, const std::string& description) {
    const std::string tool = sdk.empty() ? "\"$(command -v ziptra.exe)\"" : quotedForSh(sdk + "/bin/ziptra.exe");
    return fmt::format("wine {} run {}", tool, description);
}

/// The same for cmd and PowerShell. As the name of a program, cmd needs backslashes, and PowerShell would only print a
/// text in quotes, so CMake runs it.
std::string runOnWindows(const std::string& sdk, std::string description) {
    std::string tool = (sdk.empty() ? "" : sdk + "/bin/") + "ziptra.exe";
    std::ranges::replace(tool, '/', '\\');
    std::ranges::replace(description, '/', '\\');
    return fmt::format("{}{} run {}", needsQuotes(tool) ? "cmake -E env " : "", quotedForWindows(tool), description);
}

/// Returns the command that enters a folder. In cmd, only pushd changes the drive as well.
std::string enter(const std::string& folder, bool isWindows) {
    if (!isWindows) return "cd " + quotedForSh(folder.starts_with('-') ? "./" + folder : folder);
    return (folder.find(':') == std::string::npos ? "cd " : "pushd ") + quotedForWindows(folder);
}

}  // namespace

std::string sdkOf(const tSystem& system) {
    std::string root = system.programFolder.substr(0, system.programFolder.find_last_of("/\\"));
    if (system.isWindows) std::ranges::replace(root, '\\', '/');
    const std::string package = root + "/lib/cmake/ZiptraRemoteService/ZiptraRemoteServiceConfig.cmake";
    return system.exists(package) ? root : "";
}

std::vector<std::string> nextSteps(std::string_view name, const std::string& folder, const std::string& sdk,
                                   bool isWindows) {
    const auto quoted = isWindows ? quotedForWindows : quotedForSh;
    const std::string_view preset = isWindows ? "windows" : "cross";
    const std::string root = sdk.empty() ? "" : " -D " + quoted("ZiptraRemoteService_ROOT=" + sdk);
    const std::string description = fmt::format("build/{}/plugins/{}.ini", preset, name);
    return {enter(folder, isWindows), fmt::format("cmake --preset {}{}", preset, root),
            fmt::format("cmake --build --preset {}", preset), fmt::format("ctest --preset {}", preset),
            isWindows ? runOnWindows(sdk, description) : runWithWine(sdk, description)};
}

}  // namespace nNew
