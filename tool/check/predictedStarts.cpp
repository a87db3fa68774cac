#include "tool/check/predictedStarts.h"

#include "err/ErrorConstants.h"

namespace nCheck {

tPredictedStarts::tPredictedStarts(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask,
                                   const std::vector<std::string>& assumed)
    : allowedMask_(allowedMask), certain_(nPluginStart::noneStarted(descriptions)), possible_(certain_) {
    for (const std::string& name : assumed) possible_.emplace(name, true);
}

tOutcome tPredictedStarts::start(const tPluginDescription& description, tLoadVerdict load) {
    // The more plug-ins have started, the fewer are refused.
    const zuerr::RaiseReport* const refusal = nPluginStart::refusal(description, allowedMask_, possible_);
    if (refusal != nullptr) return {refusal->code, tStart::no};
    const bool reachesLibrary = nPluginStart::refusal(description, allowedMask_, certain_) == nullptr;

    std::optional<std::int32_t> code;
    if (load == tLoadVerdict::fails) {
        if (reachesLibrary) code = zuerr::invalidParameter.code;
        return {code, tStart::no};
    }
    possible_.at(description.name) = true;
    const bool certain = reachesLibrary && load == tLoadVerdict::succeeds && description.initialize.empty();
    if (!certain) return {std::nullopt, tStart::perhaps};
    certain_.at(description.name) = true;
    return {0, tStart::yes};
}

}  // namespace nCheck
