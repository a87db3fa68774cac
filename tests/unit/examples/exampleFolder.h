#pragma once

#include <windows.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/support/folder.h"

namespace support {

/// A folder for one test with the example plug-ins in it. Its name has blanks and letters of several scripts.
class tExampleFolder : public tFolder {
public:
    tExampleFolder() : tFolder(L"plug-ins 插件 ") {
        for (const char* name : {"Settings.dll", "Transport.dll", "Deployment.dll", "Beacon.dll"}) {
            copy_file(std::filesystem::path(u8"" EXAMPLES) / name, path() / name);
        }
    }
};

/// One of the example plug-ins, called as the host would call it. Stops, cleans up and unloads it on destruction.
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

    /// Returns the export whose name is the plug-in's name plus this suffix.
    template <class Function>
    [[nodiscard]] Function entry(const char* ending) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, (name_ + ending).c_str())));
    }

private:
    std::string name_;
    HMODULE module_ = nullptr;
};

/// Waits until another thread has made the condition true. Returns false if it is still false after ten seconds.
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
