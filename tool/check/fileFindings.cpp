#include "tool/check/fileFindings.h"

#include <algorithm>
#include <utility>

#include "tool/rules.h"

namespace nCheck {
namespace {

constexpr std::size_t keptOfEachRule = 20;

}  // namespace

void tFileFindings::add(std::string_view rule, std::optional<int> line, std::string message, std::string remedy) {
    tCount& count = counts_[nRules::find(rule)->id];
    if (++count.all > keptOfEachRule) return;
    count.lastKept = findings_.size();
    findings_.push_back(nRules::finding(rule, file_, line, std::nullopt, std::move(message)));
    if (!remedy.empty()) findings_.back().remedy = std::move(remedy);
}

std::vector<tFinding> tFileFindings::take(const std::string& plugin) {
    for (const auto& [rule, count] : counts_) {
        if (count.all <= keptOfEachRule) continue;
        findings_[count.lastKept].message +=
            " (and " + std::to_string(count.all - keptOfEachRule) + " more of this kind in the file)";
    }
    if (!plugin.empty()) {
        for (tFinding& finding : findings_) finding.plugin = plugin;
    }
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const tFinding& a, const tFinding& b) { return a.line.value_or(0) < b.line.value_or(0); });
    counts_.clear();
    return std::exchange(findings_, {});
}

}  // namespace nCheck
