#include "source/nPluginStart.h"

#include <algorithm>
#include <functional>

namespace nPluginStart {
namespace {

constexpr const char* sourceFile = ".\\source\\tPluginManager";
constexpr zuerr::RaiseReport featureMissing{zuerr::featureUnsupported, {sourceFile, 41}};
constexpr zuerr::RaiseReport dependencyMissing{zuerr::resourceNotFound, {sourceFile, 48}};

}  // namespace

tStarted noneStarted(const std::vector<tPluginDescription>& descriptions) {
    tStarted started(4 * descriptions.size());  // with many buckets, most look-ups meet one name only
    for (const tPluginDescription& description : descriptions) started.emplace(description.name, false);
    return started;
}

bool featureAllowed(std::uint32_t requiresMask, std::uint32_t allowedMask) noexcept {
    return (requiresMask & allowedMask) != 0;
}

bool dependenciesStarted(const std::vector<std::string>& dependencies, const tStarted& started) noexcept {
    const bool ascending =
        std::adjacent_find(dependencies.begin(), dependencies.end(), std::greater_equal<>()) == dependencies.end();
    return ascending && std::all_of(dependencies.begin(), dependencies.end(), [&started](const std::string& name) {
               const auto found = started.find(name);
               return found != started.end() && found->second;
           });
}

const zuerr::RaiseReport* refusal(const tPluginDescription& description, std::uint32_t allowedMask,
                                  const tStarted& started) noexcept {
    if (!featureAllowed(description.requiresMask, allowedMask)) return &featureMissing;
    if (!dependenciesStarted(description.dependencies, started)) return &dependencyMissing;
    return nullptr;
}

}  // namespace nPluginStart
