#include "tool/explain/code.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace nExplain {
namespace {

struct tRow {
    std::uint32_t code;
    std::string_view name;
    std::string_view meaning;
};

constexpr std::array systemCodes{
    tRow{0x80000003, "STATUS_BREAKPOINT", "a breakpoint or a failed assertion"},
    tRow{0x80004001, "E_NOTIMPL", "not implemented"},
    tRow{0x80004002, "E_NOINTERFACE", "an object lacks an interface"},
    tRow{0x80004003, "E_POINTER", "an invalid pointer was passed"},
    tRow{0x80004005, "E_FAIL", "an unspecified failure"},
    tRow{0x8000FFFF, "E_UNEXPECTED", "an unexpected failure"},
    tRow{0x80040154, "REGDB_E_CLASSNOTREG", "a COM class is not registered"},
    tRow{0x800401F0, "CO_E_NOTINITIALIZED", "COM was not initialised on the thread"},
    tRow{0x80070002, "ERROR_FILE_NOT_FOUND", "a file was not found (Windows error 2)"},
    tRow{0x80070005, "E_ACCESSDENIED", "access was denied (Windows error 5)"},
    tRow{0x8007000E, "E_OUTOFMEMORY", "memory ran out (Windows error 14)"},
    tRow{0x80070057, "E_INVALIDARG", "an argument was invalid (Windows error 87)"},
    tRow{0x8007007E, "ERROR_MOD_NOT_FOUND", "a library or one that it needs was not found (Windows error 126)"},
    tRow{0x800706BA, "RPC_S_SERVER_UNAVAILABLE", "an RPC server was not available (Windows error 1722)"},
    tRow{0xC0000005, "STATUS_ACCESS_VIOLATION", "an access violation"},
    tRow{0xC0000017, "STATUS_NO_MEMORY", "memory ran out"},
    tRow{0xC000001D, "STATUS_ILLEGAL_INSTRUCTION", "an instruction that the processor does not have"},
    tRow{0xC000007B, "STATUS_INVALID_IMAGE_FORMAT", "a library for another processor, or a damaged one"},
    tRow{0xC0000094, "STATUS_INTEGER_DIVIDE_BY_ZERO", "a division by zero"},
    tRow{0xC00000FD, "STATUS_STACK_OVERFLOW", "a stack overflow"},
    tRow{0xC0000135, "STATUS_DLL_NOT_FOUND", "a library was not found"},
    tRow{0xC0000139, "STATUS_ENTRYPOINT_NOT_FOUND", "a library lacks a function that another one imports"},
    tRow{0xC0000142, "STATUS_DLL_INIT_FAILED", "a library failed while it was being loaded"},
    tRow{0xC0000374, "STATUS_HEAP_CORRUPTION", "a damaged heap"},
    tRow{0xC0000409, "STATUS_STACK_BUFFER_OVERRUN", "a damaged stack, or a program that ended itself at once"},
    tRow{0xC06D007E, "delayed import: ERROR_MOD_NOT_FOUND", "a library that is loaded late was not found"},
    tRow{0xC06D007F, "delayed import: ERROR_PROC_NOT_FOUND", "a library that is loaded late lacks a function"},
    tRow{0xE0434352, "CLR exception", "an exception of .NET code"},
    tRow{0xE06D7363, "C++ exception", "a C++ exception of a library built with Microsoft's compiler"},
};

template <class Number>
std::optional<Number> parseNumber(std::string_view text, int base) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

bool isOfParser(const tCode& entry) { return entry.code < 0 && entry.code > nCodes::lastReserved; }

tOrigin originOf(std::int32_t code, const std::vector<const tCode*>& meanings) {
    if (code == 0) return tOrigin::success;
    if (code > 0) return tOrigin::warning;
    if (meanings.empty()) return tOrigin::unused;
    if (std::any_of(meanings.begin(), meanings.end(), [](const tCode* entry) { return isOfParser(*entry); })) {
        return tOrigin::parser;
    }
    return meanings.front()->code == code ? tOrigin::host : tOrigin::pluginsOwn;
}

std::string_view summaryOf(tOrigin origin) {
    switch (origin) {
        case tOrigin::success: return "Success.";
        case tOrigin::warning:
            return "A warning of the plug-in's own: its Initialize returned it, and the plug-in has started. Look the "
                   "number up in the plug-in's documentation.";
        case tOrigin::host: return "One of the host's codes.";
        case tOrigin::parser:
            return "A result of the host's parser of descriptions, which is only seen in reports. In a `Code:` line it "
                   "is the plug-in's own.";
        case tOrigin::unused:
            return "Reserved for the host, which never raises it: a plug-in returned it against the rules. Look it up "
                   "in the plug-in's documentation.";
        case tOrigin::pluginsOwn: break;
    }
    return "Not one of the host's codes, so it is the plug-in's own: its Initialize returned it, or an exception with "
           "this code left an entry point. Only the plug-in's documentation or maker knows what it means.";
}

}  // namespace

std::optional<std::int32_t> parseCode(std::string_view text) {
    constexpr std::string_view prefix = "0x";
    if (text.starts_with(prefix) || text.starts_with("0X")) {
        text.remove_prefix(prefix.size());
        const auto value = parseNumber<std::uint32_t>(text, 16);
        return value ? std::optional(static_cast<std::int32_t>(*value)) : std::nullopt;
    }
    const auto value = parseNumber<std::int64_t>(text, 10);
    if (!value || *value < std::numeric_limits<std::int32_t>::min() ||
        *value > std::numeric_limits<std::uint32_t>::max()) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(*value));
}

bool isTooLarge(std::string_view text) {
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = text.substr(isHexadecimal ? 2 : text.starts_with('-') ? 1 : 0);
    const std::string_view allowed(isHexadecimal ? "0123456789abcdefABCDEF" : "0123456789");
    return !digits.empty() && digits.find_first_not_of(allowed) == std::string_view::npos && !parseCode(text);
}

std::string hexadecimal(std::int32_t code) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) text += digits[(static_cast<std::uint32_t>(code) >> shift) & 0xFU];
    return text;
}

std::optional<tSystemCode> findSystemCode(std::int32_t code) {
    const auto wanted = static_cast<std::uint32_t>(code);
    for (const tRow& row : systemCodes) {
        if (row.code == wanted) return tSystemCode{std::string(row.name), std::string(row.meaning)};
    }
    constexpr std::uint32_t windowsErrors = 0x80070000;  // what HRESULT_FROM_WIN32 adds
    if ((wanted & 0xFFFF0000U) != windowsErrors) return std::nullopt;
    const std::string number = std::to_string(wanted & 0xFFFFU);
    return tSystemCode{{}, "Windows error " + number + ", which `net helpmsg " + number + "` explains"};
}

tCodeExplanation explainCode(std::int32_t code) {
    tCodeExplanation explanation{code, tOrigin::success, {}, nCodes::find(code), findSystemCode(code)};
    explanation.origin = originOf(code, explanation.meanings);
    explanation.summary = summaryOf(explanation.origin);
    if (code > 0 && originOf(-code, nCodes::find(-code)) == tOrigin::host) {
        explanation.summary += " Did you mean -" + std::to_string(code) + ", which is one of the host's codes?";
    }
    return explanation;
}

}  // namespace nExplain
