// Groups ini and status on Windows: description files and the status file, including the system's share.
#include <windows.h>

#include <array>
#include <memory>

#include "bench/bareHost_win32.h"
#include "bench/groups.h"
#include "bench/pairs.h"
#include "source/nPluginData.h"
#include "source/tService.h"
#include "stdpath/path.h"

namespace {

using nBench::demand;

constexpr std::array<const wchar_t*, 7> keys = {L"Name",       L"Dependencies", L"Path",   L"Requires",
                                                L"Initialize", L"Stop",         L"Cleanup"};

/// The paths of description files in the order in which they are found, in narrow and wide characters.
struct tFiles {
    explicit tFiles(int count) {
        nPluginData::listDescriptionFiles(tDescriptions(count).directory().native(), ".ini", paths);
        demand(paths.size() == static_cast<std::size_t>(count), "the folder contains other files than descriptions");
        for (const std::string& path : paths) widePaths.push_back(nStdPath::widePathFromUtf8(path));
    }

    std::vector<std::string> paths;
    std::vector<std::wstring> widePaths;
};

tPluginDescription describe(const std::string& path) {
    tPluginDescription description;
    nPluginData::readDescription(path, description);
    return description;
}

std::wstring profileValue(const std::wstring& path, const wchar_t* key) {
    std::array<wchar_t, MAX_PATH> value{};
    GetPrivateProfileStringW(L"Service", key, L"", value.data(), MAX_PATH, path.c_str());
    return value.data();
}

/// Demands that the system reads the same values from the file as the host.
void demandSameValues(const tFiles& files, std::size_t i) {
    const tPluginDescription description = describe(files.paths[i]);
    const auto value = [&](const wchar_t* key) { return profileValue(files.widePaths[i], key); };
    const auto wide = [](const std::string& text) { return std::wstring(text.begin(), text.end()); };
    demand(!description.name.empty() && value(L"Name") == wide(description.name) &&
               value(L"Path") == wide(description.path) && value(L"Initialize") == wide(description.initialize) &&
               value(L"Stop") == wide(description.stop) && value(L"Cleanup") == wide(description.cleanup) &&
               value(L"Requires") == std::to_wstring(description.requiresMask) && value(L"Dependencies").empty(),
           files.paths[i] + " is read differently by the system");
}

void describeAll(const tFiles& files) {
    for (const std::string& path : files.paths) describe(path);
}

nBench::tPair againstBareReading(int count) {
    const auto files = std::make_shared<tFiles>(count);
    return {[files] { describeAll(*files); },
            [files] {
                for (const std::wstring& path : files->widePaths) readBarely(path.c_str());
            }};
}

/// The system is slow: each pair reads another twentieth of the files.
nBench::tPair againstPrivateProfile(int count) {
    const auto files = std::make_shared<tFiles>(count);
    for (std::size_t i = 0; i < files->paths.size(); i += 97) demandSameValues(*files, i);
    auto nextPart = [files, first = std::size_t{0}]() mutable {
        const std::size_t begin = first;
        first = (first + files->paths.size() / 20) % files->paths.size();
        return std::pair(begin, begin + files->paths.size() / 20);
    };
    return {[files, nextPart]() mutable {
                for (auto [i, end] = nextPart(); i < end; ++i) describe(files->paths[i]);
            },
            [files, nextPart]() mutable {
                for (auto [i, end] = nextPart(); i < end; ++i) {
                    for (const wchar_t* key : keys) profileValue(files->widePaths[i], key);
                }
            }};
}

nBench::tPair statusPair() {
    std::string text;
    while (text.size() < 100'000) text += "Plugin (depends on Other)\nLoaded From: C:\\plugins\\plugin.dll\n\n";
    const std::string folder = nStdPath::pathToUtf8(statusFolder().native());
    std::filesystem::create_directories(folder);
    const std::wstring directory = nStdPath::widePathFromUtf8(folder);
    const auto ours = [=] { WriteStatusFile(folder, "ours", text); };
    const auto peer = [=] { replaceBarely(directory + L"\\peer", directory + L"\\.peer.tmp", text); };
    ours();
    peer();
    demand(readText(directory + L"\\ours").size() > text.size(), "the status file was not written");
    demand(readText(directory + L"\\ours") == readText(directory + L"\\peer"), "the status files differ");
    return {nBench::repeat(20, ours), nBench::repeat(20, peer)};
}

}  // namespace

void addDescriptionFileRows() {
    const int count = nBench::quick() ? 100 : 10'000;
    nBench::addRow({"ini/wine-files", "", count, [count] { return againstBareReading(count); }});
    nBench::addRow({"ini/wine-privateprofile", "", count, [count] { return againstPrivateProfile(count); }});
}

void addStatusRows() { nBench::addRow({"status/replace", "", 0, statusPair}); }
