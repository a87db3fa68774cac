// Compares the plug-in manager with a small model: plug-ins load or not, lack entries, fail, throw and refuse to be
// unloaded, in any order of starts, stops and clean-ups. Every call and every code must be as predicted.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "check.h"
#include "err/Exception.h"
#include "source/tPluginManager.h"
#include "tests/support/fakePlugins.h"

namespace {

constexpr std::size_t pluginCount = support::tFakePlugins::count;
constexpr std::int32_t loaderFailure = -52005;

/// An entry point's behaviour: it returns its result or throws. `code` is the manager's code for it.
struct tBehaviour {
    std::int32_t code = 0;
    bool throws = false;

    [[nodiscard]] bool fails() const { return throws || code < 0; }
    [[nodiscard]] std::int32_t run() const {
        if (!throws) return code;
        if (code == -52000) throw std::bad_alloc();
        if (code == -52003) throw std::runtime_error("of a plug-in");
        zuerr::Raise({"own", {"file", 1}, nullptr}, code);
    }
};

/// A plug-in's behaviour, for both the fake and the model.
struct tCharacter {
    bool loads = true;
    std::set<std::string> missing;
    int refusedUnloads = 0;
    tBehaviour initialize;
    tBehaviour stop;
    tBehaviour cleanup;
};

using tCharacters = std::array<tCharacter, pluginCount>;

struct tModelEntry {
    tPluginDescription description;
    bool loaded = false;
    std::array<std::int32_t, 3> codes{};
};

/// Predicts the codes and the calls.
class tModel {
public:
    explicit tModel(tCharacters characters) : characters_(std::move(characters)) {}

    /// Returns false if the start ends early.
    bool startAll(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask) {
        std::set<std::string> started;
        for (const tPluginDescription& description : descriptions) {
            tModelEntry entry{description, false, {}};
            const std::optional<std::int32_t> failure = start(entry, allowedMask, started);
            if (failure) {
                if (!unload(entry)) return false;
                entry.codes[0] = *failure;
            }
            entries.push_back(entry);
        }
        return true;
    }

    void stopAll() {
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            const tBehaviour behaviour = call(*entry, "Stop", entry->description.stop, character(*entry).stop);
            entry->codes[1] = behaviour.throws ? behaviour.code : 0;
        }
    }

    void cleanupAll() {
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            const tBehaviour behaviour = call(*entry, "Cleanup", entry->description.cleanup, character(*entry).cleanup);
            entry->codes[2] = behaviour.throws ? behaviour.code : unload(*entry) ? 0 : loaderFailure;
        }
    }

    std::vector<tModelEntry> entries;
    std::vector<std::string> calls;

private:
    tCharacter& character(const tModelEntry& entry) {
        return characters_[static_cast<std::size_t>(entry.description.path.front() - 'A')];
    }

    std::optional<std::int32_t> start(tModelEntry& entry, std::uint32_t allowedMask, std::set<std::string>& started) {
        const tPluginDescription& description = entry.description;
        const auto& dependencies = description.dependencies;
        if ((description.requiresMask & allowedMask) == 0) return -52002;
        if (!std::includes(started.begin(), started.end(), dependencies.begin(), dependencies.end())) return -52006;
        calls.push_back("load " + description.path);
        if (!character(entry).loads) return loaderFailure;
        entry.loaded = true;
        for (const std::string& name : {description.initialize, description.stop, description.cleanup}) {
            if (name.empty()) continue;
            calls.push_back("symbol " + description.path + " " + name);
            if (character(entry).missing.contains(name)) return loaderFailure;
        }
        const tBehaviour behaviour = call(entry, "Init", description.initialize, character(entry).initialize);
        if (behaviour.throws) return behaviour.code;
        if (behaviour.fails()) return unload(entry) ? behaviour.code : loaderFailure;
        entry.codes[0] = behaviour.code;
        started.insert(description.name);
        return std::nullopt;
    }

    /// An entry without a name, or of a library that is not loaded, does nothing.
    tBehaviour call(const tModelEntry& entry, const char* verb, const std::string& name, const tBehaviour& behaviour) {
        if (!entry.loaded || name.empty()) return {};
        calls.push_back("call " + entry.description.path + " " + verb);
        return behaviour;
    }

    bool unload(tModelEntry& entry) {
        if (!entry.loaded) return true;
        calls.push_back("unload " + entry.description.path);
        if (character(entry).refusedUnloads-- > 0) return false;
        character(entry).refusedUnloads = 0;
        entry.loaded = false;
        return true;
    }

    tCharacters characters_;
};

tBehaviour anyBehaviour(FuzzedDataProvider& data) {
    switch (data.ConsumeIntegralInRange(0, 7)) {
        case 0: return {-52000, true};
        case 1: return {-52003, true};
        case 2: return {data.ConsumeIntegralInRange(INT32_MIN, -53000), true};
        case 3: return {data.ConsumeIntegral<std::int32_t>(), false};
        case 4: return {3, false};
        default: return {};
    }
}

tCharacter anyCharacter(FuzzedDataProvider& data) {
    tCharacter character;
    character.loads = data.ConsumeIntegralInRange(0, 7) != 0;
    for (const char* const name : {"Init", "Stop", "Cleanup"}) {
        if (data.ConsumeIntegralInRange(0, 15) == 0) character.missing.insert(name);
    }
    character.refusedUnloads = std::max(0, data.ConsumeIntegralInRange(-4, 3));
    character.initialize = anyBehaviour(data);
    character.stop = anyBehaviour(data);
    character.cleanup = anyBehaviour(data);
    return character;
}

void give(support::tFakePlugin& plugin, const tCharacter& character) {
    plugin.loads = character.loads;
    plugin.missing = character.missing;
    plugin.refusedUnloads = character.refusedUnloads;
    plugin.initialize = [character] { return character.initialize.run(); };
    plugin.stop = [character] { static_cast<void>(character.stop.run()); };
    plugin.cleanup = [character] { static_cast<void>(character.cleanup.run()); };
}

tPluginDescription anyDescription(FuzzedDataProvider& data) {
    const auto letter = [&](char last) { return std::string(1, data.ConsumeIntegralInRange('A', last)); };
    tPluginDescription description = support::tFakePlugins::description(letter('H'));
    // Few names, so that they often coincide.
    description.name = letter('C');
    for (int count = data.ConsumeIntegralInRange(-3, 3); count > 0; --count) {
        description.dependencies.push_back(letter('C'));
    }
    if (data.ConsumeIntegralInRange(0, 7) != 0) {
        std::sort(description.dependencies.begin(), description.dependencies.end());
    }
    description.requiresMask = data.ConsumeIntegralInRange(0U, 7U);
    if (data.ConsumeIntegralInRange(0, 7) == 0) description.initialize.clear();
    if (data.ConsumeIntegralInRange(0, 7) == 0) description.stop.clear();
    if (data.ConsumeIntegralInRange(0, 7) == 0) description.cleanup.clear();
    return description;
}

void compare(const tPluginManager& manager, const support::tFakePlugins& plugins, const tModel& model) {
    check(plugins.calls == model.calls, "calls");
    check(manager.entries().size() == model.entries.size(), "number of entries");
    for (std::size_t i = 0; i < model.entries.size(); ++i) {
        const tPluginEntry& entry = manager.entries()[i];
        const std::array codes{entry.initCode, entry.stopCode, entry.cleanupCode};
        check(codes == model.entries[i].codes, "codes");
        check((entry.library.loaded == 1) == model.entries[i].loaded, "loaded");
        check(entry.description.name == model.entries[i].description.name, "order");
    }
}

bool starts(tPluginManager& manager, const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask) {
    try {
        manager.startAll(descriptions, allowedMask);
        return true;
    } catch (const zuerr::Exception& exception) {
        check(exception.record.code == loaderFailure, "what startAll throws");
        return false;
    }
}

void startBoth(FuzzedDataProvider& data, tPluginManager& manager, tModel& model) {
    std::vector<tPluginDescription> descriptions;
    for (int count = data.ConsumeIntegralInRange(0, 12); count > 0; --count) {
        descriptions.push_back(anyDescription(data));
    }
    const auto allowedMask = data.ConsumeIntegralInRange(0U, 7U);
    check(starts(manager, descriptions, allowedMask) == model.startAll(descriptions, allowedMask),
          "whether startAll throws");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    FuzzedDataProvider data(input, size);
    support::tFakePlugins plugins;
    tCharacters characters;
    for (std::size_t i = 0; i < pluginCount; ++i) {
        characters[i] = anyCharacter(data);
        give(plugins.plugin(std::string(1, static_cast<char>('A' + i))), characters[i]);
    }
    tModel model(characters);
    tPluginManager manager;
    for (int step = 0; step < 8 && data.remaining_bytes() > 0; ++step) {
        switch (data.ConsumeIntegralInRange(0, 2)) {
            case 0: startBoth(data, manager, model); break;
            case 1: manager.stopAll(), model.stopAll(); break;
            default: manager.cleanupAll(), model.cleanupAll(); break;
        }
        compare(manager, plugins, model);
    }
    return 0;
}
