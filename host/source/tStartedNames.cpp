#include "source/tStartedNames.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

namespace {

std::size_t hashOf(std::string_view name) { return std::hash<std::string_view>{}(name); }

std::uint32_t tagOf(std::size_t hash) { return static_cast<std::uint32_t>(std::uint64_t{hash} >> 32U); }

}  // namespace

tStartedNames::tStartedNames(std::size_t room) : slots_(std::bit_ceil(2 * room + 1)) { names_.reserve(room); }

void tStartedNames::add(std::string name) noexcept {
    const std::size_t hash = hashOf(name);
    tSlot& slot = slots_[find(hash, name)];
    if (slot.number != 0) return;
    names_.push_back(std::move(name));
    slot = {tagOf(hash), static_cast<std::uint32_t>(names_.size())};
}

bool tStartedNames::haveStarted(const std::vector<std::string>& dependencies) const noexcept {
    const bool ascending =
        std::adjacent_find(dependencies.begin(), dependencies.end(), std::greater_equal<>()) == dependencies.end();
    return ascending && std::all_of(dependencies.begin(), dependencies.end(), [&](const std::string& name) {
               return slots_[find(hashOf(name), name)].number != 0;
           });
}

std::size_t tStartedNames::find(std::size_t hash, std::string_view name) const noexcept {
    const std::size_t last = slots_.size() - 1;
    const auto holdsAnother = [&](const tSlot& slot) {
        return slot.number != 0 && (slot.tag != tagOf(hash) || names_[slot.number - 1] != name);
    };
    std::size_t index = hash & last;
    while (holdsAnother(slots_[index])) index = (index + 1) & last;
    return index;
}
