#pragma once

#include <cstdint>
#include <stdexcept>
#include <utility>

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

/// Asks the machine's system-configuration framework whether remote deployment is allowed. Every object of the
/// framework is released before a query returns. One thread.
namespace nDeployment {

/// Whether two references are to one object: whether both give the same pointer when asked for their identity. An
/// object that refuses to tell is identified by the reference itself.
[[nodiscard]] bool isSameObject(nZusysapi::Object& left, nZusysapi::Object& right);

/// A counted reference to one of the framework's objects, or none; releases it when it goes.
template <class Interface>
class tHolder {
public:
    tHolder() = default;
    ~tHolder() {
        if (object_ != nullptr) object_->release();
    }
    tHolder(const tHolder&) = delete;
    tHolder& operator=(const tHolder&) = delete;

    [[nodiscard]] Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }

    /// Makes a call that gives an object out, and owns what it gives instead of what it held. False, with nothing
    /// changed, when the call fails or gives nothing. A positive result is a failure too, but one that may give an
    /// object, which is released; with a negative one the pointer given means nothing.
    template <class Call>
    bool receive(Call call) {
        tHolder given;
        const nZusysapi::Result result = call(&given.object_);
        if (result < 0) given.object_ = nullptr;
        if (result != 0 || given.object_ == nullptr) return false;
        std::swap(object_, given.object_);
        return true;
    }

    /// Refers to this object, with a reference of its own. Nothing changes when it is the same object already.
    void assign(Interface& object) {
        if (object_ != nullptr && isSameObject(*object_, object)) return;
        if (object_ != nullptr) object_->release();
        object_ = &object;
        object_->addReference();
    }

private:
    Interface* object_ = nullptr;
};

/// One attempt to reach the resource that holds the setting. False when any step of it fails; the holders then stay as
/// they were and nothing else is kept.
bool ConnectFramework(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Seven attempts, each failed one, the last included, followed by a pause of ten seconds: 70 seconds at worst. Throws
/// CannotInitSystemFramework.
void ConnectWithRetry(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Any value but 0 of the setting means allowed. Throws either exception above.
[[nodiscard]] bool IsDeploymentAllowed();

/// The bit of the allowed mask that stands for deployment.
inline constexpr std::uint32_t deploymentFeature = 2;

/// Clears the deployment bit in the service's mask when deployment is not allowed. A failed query leaves the mask as it
/// is and says why in a line of the service's messages.
void ApplyDeploymentSetting(tService& service);

/// Asked of the platform: the framework library's entry, or null while this machine has no such library. It is bound
/// here and not by an import, so that the program starts without it. Found beside the executable first, then in the
/// system folder, and nowhere else: never in the current directory or along PATH, where others may be able to plant a
/// library of that name. Like an import it then stays loaded, with one reference however often it is asked for; one
/// without the entry does not.
[[nodiscard]] nZusysapi::InstantiateFramework2 bindFramework() noexcept;

void pause(std::uint32_t milliseconds) noexcept;

}  // namespace nDeployment
