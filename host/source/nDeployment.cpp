#include "source/nDeployment.h"

#include "source/nDeploymentPlatform.h"

namespace nDeployment {
namespace {

constexpr int attempts = 7;
constexpr std::uint32_t pauseMs = 10'000;

constexpr std::uint32_t option = 0x103A000;
constexpr std::uint32_t optionValue = 4;
constexpr const char16_t* localMachine = u"//localhost";
constexpr std::uint32_t connectionFlag = 1;
constexpr std::uint32_t resourceSelector = 1;
constexpr std::uint32_t deploymentSetting = 0x13000000;

/// Returns false, with the holder unchanged, if the object refuses.
bool askIdentity(nZusysapi::Object& object, tHolder<nZusysapi::Object>& identity) {
    return identity.acquire([&object](nZusysapi::Object** out) {
        void* returned = nullptr;
        const nZusysapi::Result result = object.queryInterface(nZusysapi::identity, &returned);
        *out = static_cast<nZusysapi::Object*>(returned);
        return result;
    });
}

bool readSetting(nZusysapi::Resource& resource) {
    std::uint32_t value = 0;
    if (resource.readSetting(deploymentSetting, &value) != 0) throw zuZiptraRemoteService::DeploymentSettingNotFound();
    return value != 0;
}

}  // namespace

bool isSameObject(nZusysapi::Object& left, nZusysapi::Object& right) {
    // Both are held until they have been compared: the address of a released object may be reused.
    tHolder<nZusysapi::Object> leftIdentity;
    tHolder<nZusysapi::Object> rightIdentity;
    if (!askIdentity(left, leftIdentity) || !askIdentity(right, rightIdentity)) return &left == &right;
    return leftIdentity.get() == rightIdentity.get();
}

bool ConnectFramework(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource) {
    const nZusysapi::InstantiateFramework2 instantiate = findFrameworkEntry();
    if (instantiate == nullptr) return false;

    tHolder<nZusysapi::Framework> local;
    if (!local.acquire([&](auto** out) { return instantiate(1, 0, out); })) return false;

    tHolder<nZusysapi::Options> options;
    if (!options.acquire([&](auto** out) { return local->createOptions(out); })) return false;
    if (options->setOption(option, optionValue) != 0) return false;

    tHolder<nZusysapi::Connection> connection;
    const auto connect = [&](auto** out) { return local->connect(localMachine, connectionFlag, options.get(), out); };
    if (!connection.acquire(connect)) return false;

    std::uint32_t count = 0;
    const auto select = [&](auto** out) { return connection->selectResource(resourceSelector, out, &count); };
    if (!resource.acquire(select)) return false;

    framework.assign(*local.get());
    return true;
}

void ConnectWithRetry(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (ConnectFramework(framework, resource)) return;
        sleepMs(pauseMs);
    }
    throw zuZiptraRemoteService::CannotInitSystemFramework();
}

bool IsDeploymentAllowed() {
    tHolder<nZusysapi::Framework> framework;
    tHolder<nZusysapi::Resource> resource;
    ConnectWithRetry(framework, resource);
    return readSetting(*resource.get());
}

bool isAllowedAtOnce() {
    tHolder<nZusysapi::Framework> framework;
    tHolder<nZusysapi::Resource> resource;
    if (!ConnectFramework(framework, resource)) throw zuZiptraRemoteService::CannotInitSystemFramework();
    return readSetting(*resource.get());
}

}  // namespace nDeployment
