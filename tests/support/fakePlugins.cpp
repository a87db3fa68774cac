#include "tests/support/fakePlugins.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "tests/support/allocations.h"

namespace support {
namespace {

tFakePlugins* currentPlugins = nullptr;

/// An entry point has no argument that could identify its plug-in, so each plug-in has its own functions.
struct tEntries {
    std::int32_t (*initialize)();
    void (*stop)();
    void (*cleanup)();
};

template <std::size_t index>
constexpr tEntries entriesOf{[] { return tFakePlugins::current().enter(index, "Init").initialize(); },
                             [] { tFakePlugins::current().enter(index, "Stop").stop(); },
                             [] { tFakePlugins::current().enter(index, "Cleanup").cleanup(); }};

template <std::size_t... indices>
constexpr std::array<tEntries, sizeof...(indices)> allEntries(std::index_sequence<indices...> /*all*/) {
    return {entriesOf<indices>...};
}

constexpr auto entries = allEntries(std::make_index_sequence<tFakePlugins::count>());

std::string pathOf(std::size_t index) { return {static_cast<char>('A' + index)}; }

[[noreturn]] void giveUp(const char* what, const std::string& path) {
    std::fprintf(stderr, "fake plug-in %s: %s\n", path.c_str(), what);
    std::abort();
}

}  // namespace

tFakePlugins::tFakePlugins() { currentPlugins = this; }
tFakePlugins::~tFakePlugins() { currentPlugins = nullptr; }
tFakePlugins& tFakePlugins::current() { return *currentPlugins; }

std::size_t tFakePlugins::indexOf(const std::string& path) {
    const auto index = static_cast<std::size_t>(path.front() - 'A');
    if (path.size() != 1 || index >= count) giveUp("no such plug-in", path);
    return index;
}

tPluginDescription tFakePlugins::description(const std::string& path, std::vector<std::string> dependencies) {
    tPluginDescription description;
    description.name = path;
    description.dependencies = std::move(dependencies);
    description.path = path;
    description.initialize = "Init";
    description.stop = "Stop";
    description.cleanup = "Cleanup";
    return description;
}

std::vector<std::string> tFakePlugins::callsOf(const std::string& verb) const {
    std::vector<std::string> found;
    for (const std::string& call : calls) {
        if (call.starts_with(verb + " ")) found.push_back(call.substr(verb.size() + 1));
    }
    return found;
}

nLibrary::tHandle tFakePlugins::load(const char* path, std::uint32_t& osError) {
    const allocations::tPause pause;
    osError = 126;
    if (*path == '\0') return nullptr;
    calls.push_back(std::string("load ") + path);
    tFakePlugin& loading = plugin(path);
    loading.onLoad();
    if (!loading.loads) return nullptr;
    ++loading.references;
    return &loading;
}

bool tFakePlugins::unload(nLibrary::tHandle library, std::uint32_t& osError) {
    const allocations::tPause pause;
    auto& unloading = *static_cast<tFakePlugin*>(library);
    const std::string path = pathOf(static_cast<std::size_t>(&unloading - plugins_.data()));
    calls.push_back("unload " + path);
    if (unloading.references == 0) giveUp("unloaded once too often", path);
    unloading.onUnload();
    osError = 5;
    if (unloading.refusedUnloads > 0) {
        --unloading.refusedUnloads;
        return false;
    }
    --unloading.references;
    return true;
}

void* tFakePlugins::symbol(nLibrary::tHandle library, const char* name, std::uint32_t& osError) {
    const allocations::tPause pause;
    const auto index = static_cast<std::size_t>(static_cast<tFakePlugin*>(library) - plugins_.data());
    calls.push_back("symbol " + pathOf(index) + " " + name);
    osError = 127;
    if (plugins_[index].missing.contains(name)) return nullptr;
    const std::string_view entry = name;
    if (entry.ends_with("Init")) return reinterpret_cast<void*>(entries[index].initialize);
    if (entry.ends_with("Stop")) return reinterpret_cast<void*>(entries[index].stop);
    if (entry.ends_with("Cleanup")) return reinterpret_cast<void*>(entries[index].cleanup);
    return nullptr;
}

tFakePlugin& tFakePlugins::enter(std::size_t index, const char* entry) {
    const allocations::tPause pause;
    calls.push_back("call " + pathOf(index) + " " + entry);
    if (plugins_[index].references == 0) giveUp("called while it is not loaded", pathOf(index));
    return plugins_[index];
}

}  // namespace support
