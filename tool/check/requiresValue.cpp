#include "tool/check/requiresValue.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

#include "source/nDeployment.h"
#include "source/nPluginStart.h"
#include "tool/check/mask.h"
#include "tool/check/wording.h"

namespace nCheck {
namespace {

using nWording::quoted;

constexpr std::string_view digits = "0123456789";

/// The parts of a value, as scanf's "%u" sees them.
struct tParts {
    bool hasSign = false;
    bool isNegative = false;
    std::string_view number;  ///< its digits
    std::string_view rest;
};

tParts split(std::string_view value) {
    value.remove_prefix(std::min(value.find_first_not_of(" \t\n\v\f\r"), value.size()));
    tParts parts;
    parts.isNegative = value.starts_with('-');
    parts.hasSign = parts.isNegative || value.starts_with('+');
    if (parts.hasSign) value.remove_prefix(1);
    parts.number = value.substr(0, value.find_first_not_of(digits));
    parts.rest = value.substr(parts.number.size());
    return parts;
}

bool isTooLarge(std::string_view number) {
    std::uint32_t ignored = 0;
    return std::from_chars(number.data(), number.data() + number.size(), ignored).ec == std::errc::result_out_of_range;
}

bool isHexadecimal(const tParts& parts) {
    return parts.number == "0" && (parts.rest.starts_with('x') || parts.rest.starts_with('X'));
}

/// Returns what to write instead of the hexadecimal number; an empty text, for the rule's remedy, if it is 0 or none.
std::string inDecimal(std::string_view digits16) {
    std::uint32_t number = 0;
    std::from_chars(digits16.data(), digits16.data() + digits16.size(), number, 16);
    return number == 0 ? std::string() : "Write Requires=" + std::to_string(number) + ".";
}

}  // namespace

void findInRequires(std::string_view value, int line, std::uint32_t& mask, tFileFindings& findings) {
    if (value.empty()) return;
    const tParts parts = split(value);
    const auto message = [&] {
        return "Requires is " + quoted(value) + ", which the host reads as " + std::to_string(mask);
    };
    if (isTooLarge(parts.number)) {
        mask = parts.isNegative ? 1 : UINT32_MAX;  // the C library of Windows negates even the largest number
        findings.add("requires-too-large", line, message());
    }
    if (parts.number.empty()) {
        findings.add("requires-not-a-number", line, message());
    } else if (isHexadecimal(parts)) {
        findings.add("requires-hexadecimal", line, message(), inDecimal(parts.rest.substr(1)));
    } else {
        if (parts.hasSign) findings.add("requires-signed", line, message());
        if (!parts.rest.empty()) findings.add("requires-trailing-text", line, message());
        if (mask == 0) findings.add("requires-zero", line, "Requires is 0: the plug-in never starts");
    }
}

void findUnallowed(std::uint32_t mask, std::uint32_t allowedMask, std::optional<int> line, tFileFindings& findings) {
    if (mask == 0 || nPluginStart::featureAllowed(mask, allowedMask)) return;
    if (mask == nDeployment::feature) {
        findings.add("feature-not-allowed", line, "requires remote deployment, which the machine does not allow",
                     "Allow remote deployment on the machine, or write Requires=3 if the plug-in can do without.");
        return;
    }
    findings.add(
        "feature-not-allowed", line,
        "requires one of the features " + nMask::write(mask) + ", but the machine allows " + nMask::write(allowedMask));
}

}  // namespace nCheck
