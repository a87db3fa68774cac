// Never shipped: there is no framework library here, so each test scripts nDeployment's platform.
#include "source/nDeploymentPlatform.h"
#include "tests/support/allocations.h"
#include "tests/support/deployment.h"

namespace {

support::tDeploymentPlatform* current = nullptr;

}  // namespace

namespace support {

tDeploymentPlatform::tDeploymentPlatform(nZusysapi::InstantiateFramework2 libraryEntry) : entry(libraryEntry) {
    current = this;
}

tDeploymentPlatform::~tDeploymentPlatform() { current = nullptr; }

}  // namespace support

namespace nDeployment {

nZusysapi::InstantiateFramework2 findFrameworkEntry() { return current == nullptr ? nullptr : current->entry; }

void sleepMs(std::uint32_t milliseconds) noexcept {
    if (current == nullptr) return;
    const allocations::tPause pause;
    current->pauses.push_back(milliseconds);
    if (current->onPause) current->onPause();
}

}  // namespace nDeployment
