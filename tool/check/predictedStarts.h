#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "source/nPluginData.h"
#include "source/nPluginStart.h"

namespace nCheck {

enum class tLoadVerdict { fails, uncertain, succeeds };
enum class tStart { no, perhaps, yes };

/// What becomes of a plug-in.
struct tOutcome {
    std::optional<std::int32_t> code;  ///< the Init code, if the host itself decides it
    tStart start = tStart::no;
};

/// Goes through the plug-ins as the host does when it starts them.
class tPredictedStarts {
public:
    /// The descriptions are all those that follow, in any order. Plug-ins of the names in `assumed` that have no
    /// description may have started.
    tPredictedStarts(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask,
                     const std::vector<std::string>& assumed = {});

    /// Call in start order. `load` is what loading the library and looking up its entries brings about.
    tOutcome start(const tPluginDescription& description, tLoadVerdict load);

private:
    std::uint32_t allowedMask_;
    nPluginStart::tStarted certain_;   ///< the names that have started for certain
    nPluginStart::tStarted possible_;  ///< and those that have, if the plug-ins' own code lets them
};

}  // namespace nCheck
