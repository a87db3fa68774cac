#include "bench/toolStage.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "source/statusText.h"

namespace {

namespace fs = std::filesystem;
using nBench::demand;

constexpr bool onWindows = fs::path::preferred_separator == '\\';
constexpr const char* windowsFolder = R"(C:\Program Files\Plug-ins)";

fs::path stageFolder() { return fs::current_path() / "build" / "bench" / "tool"; }

/// Returns a name as long as "Settings".
std::string nameOf(int plugin) {
    const std::string digits = std::to_string(10'000 + plugin);
    return "Plug" + digits.substr(1);
}

/// Of two plug-ins with earlier names, so that all can start.
std::vector<std::string> dependenciesOf(int plugin) {
    if (plugin < 2) return {};
    return {nameOf(plugin / 3), nameOf(plugin / 3 + 1)};
}

std::string readExample() {
    std::ifstream file("build/windows-bench/bin/Settings.dll", std::ios::binary);
    demand(file.good(), "the example plug-in Settings is not in build/windows-bench");
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string withName(std::string library, const std::string& name) {
    constexpr std::string_view old = "Settings";
    for (std::size_t at = library.find(old); at != std::string::npos; at = library.find(old, at)) {
        library.replace(at, old.size(), name);
    }
    return library;
}

std::string libraryPath(const std::string& folder, int plugin) {
    std::string path = folder;
    path += '\\';
    return path.append(nameOf(plugin)).append(".dll");
}

std::string descriptionOf(int plugin, const std::string& folder) {
    const std::string name = nameOf(plugin);
    std::string dependencies;
    for (const std::string& other : dependenciesOf(plugin)) dependencies += (dependencies.empty() ? "" : ", ") + other;
    if (!dependencies.empty()) dependencies = "Dependencies=" + dependencies + "\r\n";
    return "[Service]\r\nName=" + name + "\r\n" + dependencies + "Path=" + libraryPath(folder, plugin) +
           "\r\nRequires=1\r\nInitialize=" + name + "Initialize\r\nCleanup=" + name + "Cleanup\r\n";
}

/// Returns the path.
std::string writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    demand(file.good(), path.string() + " cannot be written");
    return path.string();
}

}  // namespace

tStagedPlugins stagePlugins(int count) {
    const fs::path root = stageFolder() / std::to_string(count);
    const fs::path libraries = root / "libraries";
    const fs::path descriptions = root / "plugins";
    fs::remove_all(root);
    fs::create_directories(libraries);
    fs::create_directories(descriptions);
    const std::string folder = onWindows ? libraries.string() : windowsFolder;
    const std::string example = readExample();
    tStagedPlugins staged;
    staged.directory = descriptions.string();
    staged.libraries = libraries.string();
    for (int i = 0; i < count; ++i) {
        staged.files.push_back(writeFile(descriptions / (nameOf(i) + ".ini"), descriptionOf(i, folder)));
        staged.files.push_back(writeFile(libraries / (nameOf(i) + ".dll"), withName(example, nameOf(i))));
    }
    if (!onWindows) staged.options = {"--map", folder + "=" + libraries.string()};
    return staged;
}

std::string stageStatusFile(int count) {
    std::vector<tPluginEntry> entries(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        tPluginEntry& entry = entries[static_cast<std::size_t>(i)];
        entry.description.name = nameOf(i);
        entry.description.dependencies = dependenciesOf(i);
        entry.description.path = libraryPath(windowsFolder, i);
        entry.description.requiresMask = 1;
        entry.description.initialize = nameOf(i) + "Initialize";
        entry.initTimeMs = static_cast<std::uint64_t>(1 + i % 1'000);
        entry.initCode = i % 100 == 99 ? -1 : 0;
    }
    fs::create_directories(stageFolder());
    return writeFile(stageFolder() / "status", statusText({"Sun Nov 22 03:26:40 2026\n", 1, 5, {}, entries}));
}
