#pragma once

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <thread>

#include "tests/support/plugins.h"

namespace support {

/// A plug-in folder of one test's own, with the example plug-ins in it; its name is as awkward as names get.
class tExampleFolder {
public:
    tExampleFolder()
        : path_(std::filesystem::temp_directory_path() /
                (L"plug-ins 插件 " + std::to_wstring(std::random_device{}()))) {
        std::filesystem::create_directories(path_);
        for (const char* name : {"Settings.dll", "Transport.dll", "Deployment.dll"}) {
            copy_file(std::filesystem::path(testProgramFolder()) / "examples" / name, path_ / name);
        }
    }
    ~tExampleFolder() {
        std::error_code ignored;
        remove_all(path_, ignored);
    }
    tExampleFolder(const tExampleFolder&) = delete;
    tExampleFolder& operator=(const tExampleFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    void write(const std::filesystem::path& file, const std::string& content) const {
        create_directories((path_ / file).parent_path());
        std::ofstream(path_ / file, std::ios::binary) << content;
    }
    [[nodiscard]] std::string read(const std::filesystem::path& file) const {
        std::ifstream stream(path_ / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    [[nodiscard]] bool has(const std::filesystem::path& file) const { return exists(path_ / file); }

private:
    std::filesystem::path path_;
};

/// One of the example plug-ins, driven as the host drives it. Cleans up and unloads at the end if the test has not.
class tExample {
public:
    tExample(const tExampleFolder& folder, const std::string& name) : name_(name) {
        const std::filesystem::path library = folder.path() / (name + ".dll");
        module_ = LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    }
    ~tExample() {
        stop();
        cleanup();
        if (module_ != nullptr) FreeLibrary(module_);
    }
    tExample(const tExample&) = delete;
    tExample& operator=(const tExample&) = delete;

    int initialize() const { return entry<int (*)()>("Initialize")(); }
    void stop() const {
        if (name_ != "Settings") entry<void (*)()>("Stop")();
    }
    void cleanup() const { entry<void (*)()>("Cleanup")(); }

    /// An export by the plug-in's name and this ending.
    template <class Function>
    [[nodiscard]] Function entry(const char* ending) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, (name_ + ending).c_str())));
    }

private:
    std::string name_;
    HMODULE module_ = nullptr;
};

/// Waits for something that another thread does. False when it has not come about in ten seconds.
template <class Condition>
bool eventually(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace support
