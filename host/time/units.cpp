#include "time/units.h"

namespace nTime {
namespace {

/// How many of this unit make one of the next unit up.
constexpr std::uint64_t factorUp(std::int32_t unit) noexcept {
    return unit < static_cast<std::int32_t>(Unit::seconds) ? 1000 : 60;
}

}  // namespace

std::uint64_t Convert(std::uint64_t value, Unit fromUnit, Unit toUnit) noexcept {
    auto unit = static_cast<std::int32_t>(fromUnit);
    const auto target = static_cast<std::int32_t>(toUnit);
    for (; unit < target; ++unit) value /= factorUp(unit);
    for (; unit > target; --unit) value *= factorUp(unit - 1);
    return value;
}

}  // namespace nTime
