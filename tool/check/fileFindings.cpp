#include "tool/check/fileFindings.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "tool/rules.h"

namespace nCheck {
namespace {

constexpr std::size_t keptOfEachRule = 20;

}  // namespace

bool tFileFindings::count(std::string_view rule) {
    auto count = std::find_if(counts_.begin(), counts_.end(), [&](const tCount& other) { return other.rule == rule; });
    if (count == counts_.end()) count = counts_.insert(count, {nRules::find(rule)->id});
    if (++count->all > keptOfEachRule) return false;
    count->lastKept = findings_.size();
    return true;
}

void tFileFindings::keep(std::string_view rule, std::optional<int> line, tWords words) {
    findings_.push_back(nRules::finding(rule, file_, line, std::nullopt, std::move(words.message)));
    if (!words.remedy.empty()) findings_.back().remedy = std::move(words.remedy);
}

std::vector<tFinding> tFileFindings::take(const std::string& plugin) {
    for (const tCount& count : counts_) {
        if (count.all <= keptOfEachRule) continue;
        findings_[count.lastKept].message +=
            " (and " + std::to_string(count.all - keptOfEachRule) + " more of this kind in the file)";
    }
    if (!plugin.empty()) {
        for (tFinding& finding : findings_) finding.plugin = plugin;
    }
    // What is wrong with the whole file is often the consequence of a line, such as a misspelt key.
    const auto place = [](const tFinding& finding) { return finding.line.value_or(INT_MAX); };
    std::stable_sort(findings_.begin(), findings_.end(),
                     [place](const tFinding& a, const tFinding& b) { return place(a) < place(b); });
    counts_.clear();
    return std::exchange(findings_, {});
}

}  // namespace nCheck
