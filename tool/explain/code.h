#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool/codes.h"

/// Explains one code. Pure: a number in, a value out.
namespace nExplain {

/// A code that Windows or a common runtime defines.
struct tSystemCode {
    std::string name;     ///< as in Microsoft's headers; empty if only the kind of code is known
    std::string meaning;  ///< a few words
};

enum class tOrigin {
    success,    ///< 0
    warning,    ///< positive: a plug-in's own, which did start
    host,       ///< the host raises it
    parser,     ///< the parser of descriptions returns it; a plug-in may use it, too
    unused,     ///< reserved for the host, which does not raise it
    pluginsOwn  ///< any other negative code
};

struct tCodeExplanation {
    std::int32_t code = 0;
    tOrigin origin = tOrigin::success;
    std::string summary;                    ///< one sentence
    std::vector<const tCode*> meanings;     ///< what the host's table says
    std::optional<tSystemCode> systemCode;  ///< if the number is one of these
};

/// Returns the code that a text is: decimal with or without a minus sign, in its unsigned form, too, or hexadecimal
/// after "0x". Returns nullopt if it is anything else, or a number of more than 32 bits.
[[nodiscard]] std::optional<std::int32_t> parseCode(std::string_view text);

/// Returns whether a text is a number in one of these forms, but of more than 32 bits.
[[nodiscard]] bool isTooLarge(std::string_view text);

/// Returns the form in which debuggers and event logs show a code: "0xFFFF34DB".
[[nodiscard]] std::string hexadecimal(std::int32_t code);

/// Returns what Windows calls the code, if it is among the dozen that are common in plug-ins, or an error of Windows
/// that was wrapped into an HRESULT.
[[nodiscard]] std::optional<tSystemCode> findSystemCode(std::int32_t code);

[[nodiscard]] tCodeExplanation explainCode(std::int32_t code);

}  // namespace nExplain
