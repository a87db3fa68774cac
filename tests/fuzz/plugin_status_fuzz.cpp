// Compares the manager's status text with the same text composed with printf, for arbitrary texts, codes and durations.
#include <fuzzer/FuzzedDataProvider.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "source/tPluginManager.h"
#include "tests/support/fakeClock.h"
#include "tests/support/loader.h"

namespace {

/// Every path loads the same library, whose entries take their durations and results from the input. The name of an
/// entry begins with the letter of its kind.
class tFuzzedLibrary : public support::tLoader {
public:
    explicit tFuzzedLibrary(FuzzedDataProvider& data) : data_(data) {
        current_ = this;
        clock_.msPerReading = data.ConsumeIntegralInRange(0U, 1U);
    }

    nLibrary::tHandle load(const char* /*path*/, std::uint32_t& /*osError*/) override { return this; }
    bool unload(nLibrary::tHandle /*library*/, std::uint32_t& /*osError*/) override { return true; }
    void* symbol(nLibrary::tHandle /*library*/, const char* name, std::uint32_t& /*osError*/) override {
        return *name == 'I' ? reinterpret_cast<void*>(&initialize) : reinterpret_cast<void*>(&notify);
    }

private:
    static void notify() {
        const int bits = current_->data_.ConsumeIntegralInRange(0, 40);
        current_->clock_.advance(current_->data_.ConsumeIntegralInRange<std::uint64_t>(0, UINT64_C(1) << bits));
    }
    static std::int32_t initialize() {
        notify();
        return current_->data_.ConsumeIntegral<std::int32_t>();
    }

    inline static tFuzzedLibrary* current_ = nullptr;
    FuzzedDataProvider& data_;
    support::tFakeClock clock_;
};

std::string anyText(FuzzedDataProvider& data) { return data.ConsumeRandomLengthString(20); }

tPluginDescription anyDescription(FuzzedDataProvider& data) {
    const auto entryName = [&](const char* kind) { return data.ConsumeBool() ? kind + anyText(data) : std::string(); };
    tPluginDescription description;
    description.name = anyText(data);
    // A dependency usually does not exist, and then the plug-in fails.
    for (int count = data.ConsumeIntegralInRange(-3, 3); count > 0; --count) {
        description.dependencies.push_back(anyText(data));
    }
    description.requiresMask = data.ConsumeIntegral<std::uint32_t>();
    description.path = anyText(data);
    description.initialize = entryName("I");
    description.stop = entryName("S");
    description.cleanup = entryName("C");
    return description;
}

std::string expectedCall(const std::string& name, const char* defaultLabel, std::uint64_t timeMs, std::int32_t code) {
    if (timeMs == 0 && code == 0) return "";
    const std::string label = name.empty() ? defaultLabel : name;
    char time[32];
    char result[32];
    std::snprintf(time, sizeof(time), " Time: %" PRIu64 " ms\n", timeMs % (UINT64_C(1) << 32));
    std::snprintf(result, sizeof(result), " Code: %" PRId32 "\n", code);
    return label + time + label + result;
}

std::string expectedText(const tPluginEntry& entry) {
    const tPluginDescription& description = entry.description;
    std::string names;
    for (std::size_t i = 0; i < description.dependencies.size(); ++i) {
        names = i == 0 ? description.dependencies[0] : names + ", " + description.dependencies[i];
    }
    char requirement[32];
    std::snprintf(requirement, sizeof(requirement), "\nRequires: %" PRIu32 "\n", description.requiresMask);
    return description.name + " (depends on " + names + ")\nLoaded From: " + description.path + requirement +
           expectedCall(description.initialize, "Init", entry.initTimeMs, entry.initCode) +
           expectedCall(description.stop, "Stop", entry.stopTimeMs, entry.stopCode) +
           expectedCall(description.cleanup, "Cleanup", entry.cleanupTimeMs, entry.cleanupCode) + "\n";
}

void check(const tPluginManager& manager) {
    std::string expected;
    for (const tPluginEntry& entry : manager.entries()) expected += expectedText(entry);
    if (manager.statusText() == expected) return;
    std::fprintf(stderr, "got:\n%s\nexpected:\n%s\n", manager.statusText().c_str(), expected.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    FuzzedDataProvider data(input, size);
    const tFuzzedLibrary library(data);
    std::vector<tPluginDescription> descriptions;
    for (int count = data.ConsumeIntegralInRange(0, 8); count > 0; --count) {
        descriptions.push_back(anyDescription(data));
    }
    tPluginManager manager;
    check(manager);
    manager.startAll(descriptions, data.ConsumeIntegral<std::uint32_t>());
    check(manager);
    manager.stopAll();
    check(manager);
    manager.cleanupAll();
    check(manager);
    return 0;
}
