#include "source/nDeployment.h"

#include "err/Exception.h"
#include "source/tService.h"

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

/// False when the object does not tell; the holder is then left alone.
bool askIdentity(nZusysapi::Object& object, tHolder<nZusysapi::Object>& identity) {
    return identity.receive([&object](nZusysapi::Object** out) {
        void* given = nullptr;
        const nZusysapi::Result result = object.queryInterface(nZusysapi::identity, &given);
        *out = static_cast<nZusysapi::Object*>(given);
        return result;
    });
}

}  // namespace

bool isSameObject(nZusysapi::Object& left, nZusysapi::Object& right) {
    // Both are held until they have been compared: a pointer that was released may come back for another object.
    tHolder<nZusysapi::Object> leftIdentity;
    tHolder<nZusysapi::Object> rightIdentity;
    if (!askIdentity(left, leftIdentity) || !askIdentity(right, rightIdentity)) return &left == &right;
    return leftIdentity.get() == rightIdentity.get();
}

bool ConnectFramework(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource) {
    const nZusysapi::InstantiateFramework2 instantiate = bindFramework();
    if (instantiate == nullptr) return false;

    tHolder<nZusysapi::Framework> local;
    tHolder<nZusysapi::Options> options;
    tHolder<nZusysapi::Connection> connection;
    std::uint32_t count = 0;
    const bool connected = local.receive([&](nZusysapi::Framework** out) { return instantiate(1, 0, out); }) &&
                           options.receive([&](nZusysapi::Options** out) { return local->createOptions(out); }) &&
                           options->setOption(option, optionValue) == 0 &&
                           connection.receive([&](nZusysapi::Connection** out) {
                               return local->connect(localMachine, connectionFlag, options.get(), out);
                           }) &&
                           resource.receive([&](nZusysapi::Resource** out) {
                               return connection->selectResource(resourceSelector, out, &count);
                           });
    if (connected) framework.assign(*local.get());
    return connected;
}

void ConnectWithRetry(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (ConnectFramework(framework, resource)) return;
        pause(pauseMs);
    }
    throw zuZiptraRemoteService::CannotInitSystemFramework();
}

bool IsDeploymentAllowed() {
    tHolder<nZusysapi::Framework> framework;
    tHolder<nZusysapi::Resource> resource;
    ConnectWithRetry(framework, resource);
    std::uint32_t value = 0;
    if (resource->readSetting(deploymentSetting, &value) != 0) throw zuZiptraRemoteService::DeploymentSettingNotFound();
    return value != 0;
}

void ApplyDeploymentSetting(tService& service) {
    const zuerr::ForeignCall guard;  // what the framework throws comes from another C++ runtime
    try {
        if (!IsDeploymentAllowed()) service.allowedMask &= ~deploymentFeature;
    } catch (const std::exception& exception) {
        const char* const text = exception.what();
        service.messages.append(text == nullptr ? "" : text).append("\n");
    }
}

}  // namespace nDeployment
