#include "tool/check/similarNames.h"

#include <algorithm>
#include <array>
#include <utility>

#include "ini/nameIndex.h"

namespace nSimilarNames {
namespace {

constexpr std::size_t longest = 64;
constexpr std::size_t shortestAbbreviation = 3;  // "Dep" for "Dependencies"
constexpr std::size_t shortestStem = 5;          // "Depends"

using tRow = std::array<std::size_t, longest + 1>;

/// Returns the number of slips between the names: of characters inserted, removed or replaced, and of neighbours
/// swapped. Requires: neither is longer than `longest`.
std::size_t countSlips(std::string_view a, std::string_view b) {
    tRow beforeLast{};
    tRow last{};
    tRow row{};
    for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = nIni::sameName(a.substr(i - 1, 1), b.substr(j - 1, 1), false);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            const bool swapped = i > 1 && j > 1 && nIni::sameName(a.substr(i - 1, 1), b.substr(j - 2, 1), false) &&
                                 nIni::sameName(a.substr(i - 2, 1), b.substr(j - 1, 1), false);
            if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = last;
        last = row;
    }
    return last[b.size()];
}

std::size_t commonStart(std::string_view a, std::string_view b) {
    std::size_t length = 0;
    while (length < std::min(a.size(), b.size()) && nIni::toLower(a[length]) == nIni::toLower(b[length])) ++length;
    return length;
}

bool isOtherForm(std::string_view word, std::string_view known) {
    const std::size_t common = commonStart(word, known);
    return common >= (common == word.size() ? shortestAbbreviation : shortestStem);
}

}  // namespace

std::string withoutCase(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), nIni::toLower);
    return lower;
}

bool areSimilar(std::string_view a, std::string_view b) {
    const auto [shorter, longer] = std::minmax({a.size(), b.size()});
    if (longer > longest || shorter < 2 || nIni::sameName(a, b, false)) return false;
    const std::size_t allowed = longer > 5 ? 2 : 1;
    return longer - shorter <= allowed && countSlips(a, b) <= allowed;
}

std::optional<std::string_view> closest(std::string_view word, std::span<const std::string_view> known) {
    for (const std::string_view candidate : known) {
        if (areSimilar(word, candidate) || isOtherForm(word, candidate)) return candidate;
    }
    return std::nullopt;
}

bool hasOtherSeparator(std::string_view text) {
    return text.find_first_of(";|") != std::string_view::npos || text.find("\uFF0C") != std::string_view::npos ||
           text.find("\u3001") != std::string_view::npos || text.find("\uFF1B") != std::string_view::npos;
}

tNames::tNames(std::vector<std::string_view> names) : names_(std::move(names)) {}

std::optional<std::string_view> tNames::differingInCase(const std::string& name) const {
    if (byLowerCase_.empty()) {
        for (const std::string_view known : names_) byLowerCase_.emplace(withoutCase(known), known);
    }
    const auto found = byLowerCase_.find(withoutCase(name));
    return found == byLowerCase_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string_view> tNames::similarTo(std::string_view name) {
    if (comparisonsLeft_ < names_.size()) return std::nullopt;
    comparisonsLeft_ -= names_.size();
    const auto found = std::find_if(names_.begin(), names_.end(),
                                    [name](std::string_view candidate) { return areSimilar(name, candidate); });
    return found == names_.end() ? std::nullopt : std::optional(*found);
}

}  // namespace nSimilarNames
