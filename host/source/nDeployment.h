#pragma once

#include <cstdint>
#include <stdexcept>
#include <utility>

#include "source/runMessages.h"
#include "source/zusysapi.h"

namespace zuZiptraRemoteService {

struct CannotInitSystemFramework : std::runtime_error {
    CannotInitSystemFramework() : std::runtime_error(nRunMessages::frameworkNotReached) {}
};

struct DeploymentSettingNotFound : std::runtime_error {
    DeploymentSettingNotFound() : std::runtime_error(nRunMessages::settingNotFound) {}
};

}  // namespace zuZiptraRemoteService

/// Queries the machine's system-configuration framework for whether remote deployment is allowed. Every object of the
/// framework is released before a query returns. Thread: one at a time.
namespace nDeployment {

/// The bit for deployment among the features that a machine allows.
inline constexpr std::uint32_t feature = 2;

/// Returns whether two references denote the same object: whether both return the same identity pointer. If either
/// refuses to return one, the references themselves are compared.
[[nodiscard]] bool isSameObject(nZusysapi::Object& left, nZusysapi::Object& right);

/// A counted reference to one of the framework's objects, or empty. Releases it on destruction.
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

    /// Makes a call that returns an object through its argument, and stores that object in place of the current one.
    /// Returns false, with nothing changed, if the call fails or returns no object. A positive result is a failure too;
    /// an object returned with it is released. After a negative result the pointer is ignored.
    template <class Call>
    bool acquire(Call call) {
        tHolder acquired;
        const nZusysapi::Result result = call(&acquired.object_);
        if (result < 0) acquired.object_ = nullptr;
        if (result != 0 || acquired.object_ == nullptr) return false;
        std::swap(object_, acquired.object_);
        return true;
    }

    /// Stores this object and adds a reference to it. Does nothing if the same object is already stored.
    void assign(Interface& object) {
        if (object_ != nullptr && isSameObject(*object_, object)) return;
        if (object_ != nullptr) object_->release();
        object_ = &object;
        object_->addReference();
    }

private:
    Interface* object_ = nullptr;
};

/// Makes one attempt to reach the resource that contains the setting. Returns false if any step fails; the holders are
/// then unchanged, and every other reference has been released.
bool ConnectFramework(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Makes up to seven attempts and pauses for ten seconds after each failure, including the last: 70 seconds at worst.
/// Throws CannotInitSystemFramework if every attempt fails.
void ConnectWithRetry(tHolder<nZusysapi::Framework>& framework, tHolder<nZusysapi::Resource>& resource);

/// Returns whether the setting is not 0. Throws CannotInitSystemFramework or DeploymentSettingNotFound.
[[nodiscard]] bool IsDeploymentAllowed();

/// The same with a single attempt and no pause, for someone who waits for the answer.
[[nodiscard]] bool isAllowedAtOnce();

}  // namespace nDeployment
