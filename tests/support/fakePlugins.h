#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "source/nPluginData.h"
#include "tests/support/loader.h"

namespace support {

/// A plug-in library that a test scripts. It exports its entries as "Init", "Stop" and "Cleanup", with any prefix.
struct tFakePlugin {
    std::function<std::int32_t()> initialize = [] { return 0; };
    std::function<void()> stop = [] {};
    std::function<void()> cleanup = [] {};
    std::function<void()> onLoad = [] {};
    std::function<void()> onUnload = [] {};  ///< called even if the unload is refused
    bool loads = true;
    std::set<std::string> missing;  ///< entries that it does not export
    int refusedUnloads = 0;         ///< how many unloads fail before one succeeds
    int references = 0;             ///< as the loader counts them
};

/// The libraries that can be loaded while this object exists, each under a path of one letter from "A" on, and a record
/// of the calls: "load A", "symbol A Init", "call A Init", "unload A". Calling into a library that is not loaded is
/// a failure of the test program.
class tFakePlugins : public tLoader {
public:
    static constexpr std::size_t count = 8;

    tFakePlugins();
    ~tFakePlugins() override;
    tFakePlugins(const tFakePlugins&) = delete;
    tFakePlugins& operator=(const tFakePlugins&) = delete;

    /// Returns the plug-in with this path, such as plugin("A").
    tFakePlugin& plugin(const std::string& path) { return plugins_[indexOf(path)]; }

    /// Returns a description of the plug-in with that path, with the same name and all three entries.
    static tPluginDescription description(const std::string& path, std::vector<std::string> dependencies = {});

    std::vector<std::string> calls;

    /// Returns the calls that begin with this word, without the word.
    [[nodiscard]] std::vector<std::string> callsOf(const std::string& verb) const;

    nLibrary::tHandle load(const char* path, std::uint32_t& osError) override;
    bool unload(nLibrary::tHandle library, std::uint32_t& osError) override;
    void* symbol(nLibrary::tHandle library, const char* name, std::uint32_t& osError) override;

    /// The functions that the entries of the loaded libraries call.
    tFakePlugin& enter(std::size_t index, const char* entry);
    static tFakePlugins& current();

private:
    static std::size_t indexOf(const std::string& path);
    std::array<tFakePlugin, count> plugins_;
};

}  // namespace support
