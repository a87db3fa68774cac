#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Finds what somebody meant to write. The case of the letters A to Z does not matter.
namespace nSimilarNames {

/// Returns the name with the letters A to Z in lower case.
[[nodiscard]] std::string withoutCase(std::string_view name);

/// Returns whether the one may be a misspelling of the other: one slip (a character too many, too few or wrong, or two
/// that are swapped), or two in names of more than five characters. Long names, and equal ones, are never similar.
[[nodiscard]] bool areSimilar(std::string_view a, std::string_view b);

/// Returns the first of the known words that the word may be a misspelling or another form of ("Depends", "Init").
[[nodiscard]] std::optional<std::string_view> closest(std::string_view word, std::span<const std::string_view> known);

/// Returns whether the text looks like several names, separated by something else than commas.
[[nodiscard]] bool hasOtherSeparator(std::string_view text);

/// Any number of names, in which similar ones are sought. The names are borrowed.
class tNames {
public:
    explicit tNames(std::vector<std::string_view> names);

    /// Returns a name that equals this one but for the case.
    [[nodiscard]] std::optional<std::string_view> differingInCase(const std::string& name) const;

    /// Returns a similar name. Each search compares all names, so after many of them nothing is found any more.
    [[nodiscard]] std::optional<std::string_view> similarTo(std::string_view name);

private:
    mutable std::unordered_map<std::string, std::string_view> byLowerCase_;  ///< empty until the first search
    std::vector<std::string_view> names_;
    std::size_t comparisonsLeft_ = 200'000;
};

}  // namespace nSimilarNames
