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

/// A plug-in library that does what a test says. The names under which a description finds its entries are "Init",
/// "Stop" and "Cleanup".
struct tFakePlugin {
    std::function<std::int32_t()> initialize = [] { return 0; };
    std::function<void()> stop = [] {};
    std::function<void()> cleanup = [] {};
    std::function<void()> onLoad = [] {};
    std::function<void()> onUnload = [] {};  ///< also when it is refused
    bool loads = true;
    std::set<std::string> missing;  ///< entries that it does not export
    int refusedUnloads = 0;         ///< so many unloads fail before one works
    int references = 0;             ///< as the loader counts them
};

/// The libraries that can be loaded while this object lives, each under a path of one letter from "A" on, and what was
/// done with them: "load A", "symbol A Init", "call A Init", "unload A". Calling into a library that is not loaded is
/// a failure of the test program.
class tFakePlugins : public tLoader {
public:
    static constexpr std::size_t count = 8;

    tFakePlugins();
    ~tFakePlugins() override;

    /// By its path: plugin("A").
    tFakePlugin& plugin(const std::string& path) { return plugins_[indexOf(path)]; }

    /// A description of the plug-in at that path, of the same name and with all three entries.
    static tPluginDescription description(const std::string& path, std::vector<std::string> dependencies = {});

    std::vector<std::string> calls;

    /// Those of the calls that begin with this word, without it.
    [[nodiscard]] std::vector<std::string> callsOf(const std::string& verb) const;

    nLibrary::tHandle load(const char* path, std::uint32_t& osError) override;
    bool unload(nLibrary::tHandle library, std::uint32_t& osError) override;
    void* symbol(nLibrary::tHandle library, const char* name, std::uint32_t& osError) override;

    /// What the entries of the loaded libraries lead to.
    tFakePlugin& enter(std::size_t index, const char* entry);
    static tFakePlugins& current();

private:
    static std::size_t indexOf(const std::string& path);
    std::array<tFakePlugin, count> plugins_;
};

}  // namespace support
