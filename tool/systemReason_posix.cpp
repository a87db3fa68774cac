// The service never ships with this: the errors of systems other than Windows.
#include <cerrno>
#include <system_error>

#include "tool/systemReason.h"

namespace nSystemReason {

std::string of(std::uint32_t error) { return std::generic_category().message(static_cast<int>(error)); }

std::string last() { return of(static_cast<std::uint32_t>(errno)); }

}  // namespace nSystemReason
