#pragma once

#include <cstdint>
#include <stdexcept>
#include <utility>

#include "source/zusysapi.h"

namespace zuZiptraRemoteService {

struct CannotInitSystemFramework : std::runtime_error {
    CannotInitSystemFramework() : std::runtime_error("Cannot init system framework") {}
};

struct DeploymentSettingNotFound : std::runtime_error {
    DeploymentSettingNotFound() : std::runtime_error("Deployment setting not found") {}
};

}  // namespace zuZiptraRemoteService

/// Asks the machine's system-configuration framework whether remote deployment is allowed. Every object of the
/// framework is released before a query returns. Thread: one at a time.
namespace nDeployment {

/// Returns whether two references are to one object: whether both return the same pointer when asked for their
/// identity. An object that refuses to tell is identified by the reference itself.
[[nodiscard]] bool isSameObject(nZusysapi::Object& left, nZusysapi::Object& right);

/// A counted reference to one of the framework's objects, or none. Released on destruction.
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

    /// Makes a call that returns an object through its argument, and holds that object instead of the present one.
    /// Returns false, with nothing changed, if the call fails or returns no object. A positive result is a failure
    /// too, but one that may come with an object, which is released; after a negative one the pointer means nothing.
    template <class Call>
    bool acquire(Call call) {
        tHolder acquired;
        const nZusysapi::Result result = call(&acquired.object_);
        if (result < 0) acquired.object_ = nullptr;
        if (result != 0 || acquired.object_ == nullptr) return false;
        std::swap(object_, acquired.object_);
        return true;
    }

    /// Refers to this object, with a reference of its own. Changes nothing if it already refers to the same object.
    void assign(Interface& object) {
        if (object_ != nullptr && isSameObject(*object_, object)) return;
        if (object_ != nullptr) object_->release();
        object_ = &object;
        object_->addReference();
    }

private:
    Interface* object_ = nullptr;
};

/// One attempt to reach the resource that contains the setting. Returns false if any step of it fails; the holders are
/// then unchanged and nothing else is held.
bool ConnectFramework(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Makes up to seven attempts, each failed one, the last included, followed by a pause of ten seconds: 70 seconds at
/// worst. Throws CannotInitSystemFramework.
void ConnectWithRetry(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Returns whether the setting is anything but 0. Throws either exception above.
[[nodiscard]] bool IsDeploymentAllowed();

}  // namespace nDeployment
