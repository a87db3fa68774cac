#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tool/install/plan.h"

/// The machine that the commands act on.
namespace nInstall {

struct tSystem {
    /// Throws tCannot, and std::runtime_error where the service cannot run.
    std::function<tMachine()> lookAt;
    /// Returns the system's error, or 0.
    std::function<std::uint32_t(const tStep&)> perform;
    /// Returns the system's text for an error and its number: "Access denied (5)".
    std::function<std::string(std::uint32_t error)> reason;
};

/// How to treat the machine.
struct tAccess {
    std::string command;                ///< its name, for texts
    bool readOnly = false;              ///< needs no administrator
    unsigned limitSeconds = 0;          ///< for a service that starts or stops
    std::function<void()> onWait = {};  ///< called several times a second meanwhile; optional
    std::string folder = {};            ///< of the service's program, if not that of the running one
};

/// Returns this machine.
[[nodiscard]] tSystem thisSystem(const tAccess& access);

}  // namespace nInstall
