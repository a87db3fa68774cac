#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "err/ErrorConstants.h"
#include "source/nPluginData.h"

/// The rules by which a plug-in may be started. They are pure, so that they can be asked without starting anything.
namespace nPluginStart {

/// Whether a plug-in of each described name has started. Names are compared bytewise. Names chosen to collide would
/// make it slow, but each takes a description file, and a user who may write those can run any code.
using tStarted = std::unordered_map<std::string, bool>;

/// Returns all names of the descriptions, none started: noting a start needs no memory then. Throws std::bad_alloc.
[[nodiscard]] tStarted noneStarted(const std::vector<tPluginDescription>& descriptions);

/// Returns whether the plug-in requires at least one allowed feature. One that requires none is never allowed.
[[nodiscard]] bool featureAllowed(std::uint32_t requiresMask, std::uint32_t allowedMask) noexcept;

/// Returns whether all dependencies have started. Each started name counts for one mention, so a list that names a
/// plug-in twice never passes; nor does a list that is not sorted.
[[nodiscard]] bool dependenciesStarted(const std::vector<std::string>& dependencies, const tStarted& started) noexcept;

/// Returns the error with which the host refuses the plug-in before it loads the library: -52002 if no feature that it
/// requires is allowed, otherwise -52006 if a dependency has not started. Returns null if the library is to be loaded.
[[nodiscard]] const zuerr::RaiseReport* refusal(const tPluginDescription& description, std::uint32_t allowedMask,
                                                const tStarted& started) noexcept;

}  // namespace nPluginStart
