#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tool/check/catalogue.h"

namespace nCheck {

/// Says how a plug-in that comes before its dependency in the start order can be made to follow it. Whatever it advises
/// has been tried: the descriptions are ordered again with the advised change.
class tChainRemedies {
public:
    using tNames = std::vector<std::string>;
    struct tChange {
        std::size_t plugin = 0;
        tNames dependencies;  ///< sorted
    };

    /// `corrections` are changes that other findings advise already. The catalogue must outlive this object. Throws
    /// std::bad_alloc.
    explicit tChainRemedies(const tCatalogue& catalogue, std::vector<tChange> corrections = {});

    /// Returns one sentence. Ordering thousands of descriptions takes a while, so only the first few plug-ins have
    /// changes tried for them; the others are told to try again afterwards.
    /// Requires: the plug-in comes before a dependency, and is in no circle.
    [[nodiscard]] std::string remedyFor(std::size_t plugin);

private:
    [[nodiscard]] tNames allDependencies(std::size_t plugin) const;
    [[nodiscard]] std::vector<tChange> wholeChain(std::size_t plugin) const;
    [[nodiscard]] std::vector<tChange> dependants(std::size_t plugin) const;
    [[nodiscard]] bool helps(std::size_t plugin);
    bool tryDependencies(std::size_t plugin, const std::vector<tChange>& changes);
    bool tryName(std::size_t plugin, const std::string& name);
    [[nodiscard]] std::string remedyInLists(std::size_t plugin);
    [[nodiscard]] std::string remedyInDependants(std::size_t plugin);
    [[nodiscard]] std::string describe(const std::vector<tChange>& changes) const;

    const tCatalogue& catalogue_;
    std::vector<tChange> corrections_;
    std::vector<tPluginDescription> descriptions_;  ///< copies, which are changed for each attempt and restored
    std::vector<bool> tooEarly_;                    ///< by position
    std::size_t attemptsLeft_ = 20;
};

}  // namespace nCheck
