#pragma once

#include <string>
#include <vector>

#include "tests/catalogues/catalogue.h"
#include "tests/catalogues/prediction.h"
#include "tests/catalogues/statusText.h"

namespace catalogues {

/// What the host did.
struct tHosting {
    std::string bytes;   ///< of the status file
    tStatusText status;  ///< after the plug-ins were started
    std::string calls;   ///< what the test plug-ins logged by then: lines of "LIBRARY EVENT"
};

/// Returns the mask of the machine that the host then finds.
[[nodiscard]] std::uint32_t allowedMask(tDeployment deployment);

/// How the Init code of a plug-in came about.
enum class tOrigin {
    starts,            ///< predicted 0: it starts without code of its own
    feature,           ///< predicted -52002
    library,           ///< predicted -52005
    dependency,        ///< predicted -52006
    unknownCode,       ///< predicted, but none of the above
    ownCode,           ///< not predicted: its Initialize decided
    dependencysCode,   ///< not predicted: the code of one of its dependencies decided
    loadingCode,       ///< not predicted: code that runs when libraries are loaded decided
    uncertainLibrary,  ///< not predicted: a finding says why it is not known what Windows does with the library
    unexplained,       ///< not predicted, although no code of a plug-in decided
};
[[nodiscard]] tOrigin originOf(const tPrediction& prediction, std::size_t plugin, const tStatusText::tPlugin& hosted);

/// Returns a sentence for each thing that differs between the prediction and what the host did.
[[nodiscard]] std::vector<std::string> differences(const tCatalogue& catalogue, const tPrediction& prediction,
                                                   const tHosting& hosting);

}  // namespace catalogues
