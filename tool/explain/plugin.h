#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tool/check/prediction.h"
#include "tool/explain/chain.h"
#include "tool/status/statusReport.h"

/// Explains why a plug-in did not start on a machine. Pure: what is known about the machine in, a value out.
namespace nExplain {

/// What is known about the machine.
struct tEvidence {
    std::optional<nStatus::tReport> status;
    std::string statusFile;  ///< its path
    std::optional<nCheck::tPrediction> prediction;
    std::vector<std::string> obstacles;  ///< why one of the two is not known: whole sentences
};

/// Adds the prediction to what is known; or, if the host cannot open its plug-in directory, that it starts nothing.
void usePrediction(nCheck::tPrediction prediction, tEvidence& evidence);

enum class tVerdict {
    started,      ///< the status file shows it, without a negative code of its start
    failed,       ///< the status file shows a negative code of its start
    absent,       ///< there is a status file, but it does not show the plug-in
    predicted,    ///< there is no status file
    undescribed,  ///< there are only plug-ins that depend on it
    unknown       ///< nothing has this name
};

/// A call of an entry point, as the status file shows it.
struct tShownCall {
    std::string entry;
    nStatus::tPhase phase = nStatus::tPhase::initialize;
    std::uint64_t timeMs = 0;
    std::int32_t code = 0;
};

struct tPluginExplanation {
    std::string name;
    tVerdict verdict = tVerdict::unknown;
    std::string summary;                            ///< one sentence
    std::optional<std::vector<tShownCall>> calls;   ///< nullopt if the status file does not show the plug-in
    std::optional<nCheck::tPredictedPlugin> found;  ///< as `check` finds it
    std::vector<tStep> steps;                       ///< from the plug-in down to the causes; empty if it started
    std::vector<std::string> notes;                 ///< sentences about what else matters
    std::string first;                              ///< what to do first; empty if there is nothing to do
    std::vector<std::string> similar;               ///< known names that may be meant, if it is unknown
};

/// Returns the name of the verdict, as it is in the JSON.
[[nodiscard]] std::string_view verdictName(tVerdict verdict) noexcept;

[[nodiscard]] tPluginExplanation explainPlugin(const std::string& name, const tEvidence& evidence);

}  // namespace nExplain
