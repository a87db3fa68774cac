#include "tests/support/callingPlugin.h"

#include <gtest/gtest.h>

#include "tests/support/plugins.h"

namespace support {
namespace {

std::function<void(const std::string&)> current;

void forward(const char* entry) { current(entry); }

void setCallback(nLibrary::tHandle library, void (*callback)(const char*)) {
    std::uint32_t osError = 0;
    void* const entry = nLibrary::symbol(library, "SetCallback", osError);
    reinterpret_cast<void (*)(void (*)(const char*))>(entry)(callback);
}

}  // namespace

tCallingPlugin::tCallingPlugin(std::function<void(const std::string& entry)> onCall) {
    std::uint32_t osError = 0;
    library_ = nLibrary::load(pluginPath("calling").c_str(), osError);
    EXPECT_NE(library_, nullptr) << osError;
    current = std::move(onCall);
    setCallback(library_, forward);
}

tCallingPlugin::~tCallingPlugin() {
    setCallback(library_, nullptr);
    current = nullptr;
    std::uint32_t osError = 0;
    nLibrary::unload(library_, osError);
}

}  // namespace support
