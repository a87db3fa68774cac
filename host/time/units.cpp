#include "time/units.h"

namespace nTime {
namespace {

/// Returns how many of this unit make one of the next larger unit.
constexpr std::uint64_t factorUp(std::int32_t unit) noexcept {
    return unit < static_cast<std::int32_t>(tUnit::seconds) ? 1000 : 60;
}

}  // namespace

std::uint64_t Convert(std::uint64_t value, tUnit fromUnit, tUnit toUnit) noexcept {
    auto unit = static_cast<std::int32_t>(fromUnit);
    const auto target = static_cast<std::int32_t>(toUnit);
    for (; unit < target; ++unit) value /= factorUp(unit);
    for (; unit > target; --unit) value *= factorUp(unit - 1);
    return value;
}

}  // namespace nTime
