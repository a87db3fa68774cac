#pragma once

#include <cstdint>
#include <stdexcept>

#include "source/zusysapi.h"

class tService;

namespace zuZiptraRemoteService {

struct CannotInitSystemFramework : std::runtime_error {
    CannotInitSystemFramework() : std::runtime_error("Cannot init system framework") {}
};

struct DeploymentSettingNotFound : std::runtime_error {
    DeploymentSettingNotFound() : std::runtime_error("Deployment setting not found") {}
};

}  // namespace zuZiptraRemoteService

/// Asks the machine's system-configuration framework whether remote deployment is allowed. Nothing is kept between
/// queries. One thread.
namespace nDeployment {

/// A counted reference to one of the framework's objects; releases it when it goes.
template <class Interface>
class tHolder {
public:
    tHolder() = default;
    ~tHolder() { reset(); }
    tHolder(const tHolder&) = delete;
    tHolder& operator=(const tHolder&) = delete;

    [[nodiscard]] Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }

    /// For a call that gives an object out: what it writes is owned from then on. Only for an empty holder.
    Interface** out() noexcept { return &object_; }

    /// Refers to another object, with a reference of its own. Nothing changes when it is the same object already.
    void assign(Interface* object);
    void reset() noexcept;

private:
    Interface* object_ = nullptr;
};

/// One attempt to reach the resource that holds the setting. False when any step of it fails; the holders then stay as
/// they were and nothing else is kept.
bool ConnectFramework(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Seven attempts, each failed one followed by a pause of ten seconds. Throws CannotInitSystemFramework.
void ConnectWithRetry(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Throws either exception above.
[[nodiscard]] bool IsDeploymentAllowed();

/// Clears the deployment bit in the service's mask when deployment is not allowed. A failed query leaves it allowed and
/// says why in the service's messages.
void ApplyDeploymentSetting(tService& service);

/// The bit of the allowed mask that stands for deployment.
inline constexpr std::uint32_t deploymentFeature = 2;

/// Asked of the platform: the framework library's entry, or null when it is not on this machine. The library is loaded
/// by the first call that finds it and stays loaded: objects of it may outlive any scope that we could close.
[[nodiscard]] nZusysapi::InstantiateFramework2 bindFramework() noexcept;
void pause(std::uint32_t milliseconds) noexcept;

}  // namespace nDeployment
