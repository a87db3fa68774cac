#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Reads the text of a status file. Pure: text in, value out.
///
/// The format was made for people, and some texts can mean more than one thing. The reader chooses the likelier
/// meaning and sets `ambiguous`:
///
/// - The first line of a plug-in, "NAME (depends on A, B)", with " (depends on " more than once: the last one counts
///   after which there is a list that a description can contain.
/// - A plug-in that shows only one or two of its three calls, because the others took no time and succeeded, or have
///   not been made. The phases are those that the entries' names suggest, otherwise the earliest. This is not
///   ambiguous if the entries are named after their plug-in as is usual: AlphaInit or AlphaInitialize alone, or
///   followed by AlphaStop or AlphaCleanup, in a plug-in called Alpha.
/// - A line after a plug-in's paragraph that belongs to none. It is read as a message, and the report is ambiguous:
///   either the paragraph was part of a message of several lines, or the file has been changed.
///
/// Two cases cannot be told apart and are not marked: a message that ends with a whole paragraph, as if of a plug-in,
/// is read as that plug-in; and an entry named after its plug-in and another phase (a Stop entry called AlphaInit) is
/// believed.
namespace nStatus {

enum class tPhase : std::uint8_t { initialize, stop, cleanup };

/// One call of an entry point.
struct tCall {
    std::string_view entry;  ///< its name, or "Init", "Stop" or "Cleanup" if it has none
    tPhase phase = tPhase::initialize;
    std::uint64_t timeMs = 0;  ///< modulo 2^32
    std::int32_t code = 0;
};

struct tPlugin {
    std::string_view name;
    std::vector<std::string_view> dependencies;
    std::string_view path;
    std::uint32_t requiresMask = 0;
    std::vector<tCall> calls;  ///< those that the file shows, in the order of their phases, each phase at most once
    bool ambiguous = false;    ///< whether other contents could have produced the same text
};

/// The texts of the plug-ins are parts of the report's own text, which copies share: a plug-in can be used as long as a
/// report that contains it. Ten thousand plug-ins would otherwise cost half of the reader's time.
struct tReport {
    std::string updated;  ///< as in the file, without the line break; empty if the host could not format its clock
    std::uint32_t allowedMask = 0xFFFFFFFF;
    std::optional<std::uint64_t> initTimeMs;    ///< modulo 2^32
    std::vector<std::string> messages;          ///< the lines of the messages
    std::vector<tPlugin> plugins;               ///< in the file's order
    bool ambiguous = false;                     ///< whether other contents could have produced the same text
    std::shared_ptr<const std::string> text{};  ///< null if the report has not been read
};

/// Why a text is no status file.
struct tNotAStatusFile {
    int line = 1;        ///< from 1
    std::string reason;  ///< what the line lacks, without a final stop
};

/// Reads any text that the host can write; accepts CR LF and LF. Time and memory are proportional to the text.
/// Throws std::bad_alloc.
[[nodiscard]] std::variant<tReport, tNotAStatusFile> read(std::string text);

}  // namespace nStatus
