#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tool/codes.h"
#include "tool/status/statusReport.h"

/// What people ask a status report first: what failed, why, and what took long. A plug-in is identified by its position
/// in the report, because several can have the same name.
namespace nStatus {

/// Returns the first call that failed, otherwise the first one with a warning, otherwise null.
[[nodiscard]] const tCall* decisiveCall(const tPlugin& plugin) noexcept;

/// Returns the code of the decisive call: negative if the plug-in failed, positive if it warned, otherwise 0.
[[nodiscard]] std::int32_t decisiveCode(const tPlugin& plugin) noexcept;

/// Returns the call of this phase, or null if the report does not show it.
[[nodiscard]] const tCall* findCall(const tPlugin& plugin, tPhase phase) noexcept;

/// Returns "initialize", "stop" or "cleanup".
[[nodiscard]] std::string_view phaseName(tPhase phase) noexcept;

/// Returns "9999 ms", "12.3 s" or "75 min", rounded down.
[[nodiscard]] std::string durationText(std::uint64_t ms);

/// Returns "0x" and the mask in hexadecimal, as the status file shows it.
[[nodiscard]] std::string maskText(std::uint32_t mask);

struct tSummary {
    std::size_t failed = 0;
    std::size_t warned = 0;
    std::size_t ambiguous = 0;
    std::uint64_t longestMs = 0;               ///< of all calls
    bool anyStopped = false;                   ///< whether a Stop or Cleanup call is shown
    std::vector<std::size_t> failuresFirst{};  ///< positions: failures in their order, then warnings, then the slowest
};

[[nodiscard]] tSummary summarize(const tReport& report);

/// Returns "12 plug-ins: 2 failed, 1 with a warning".
[[nodiscard]] std::string countsText(const tReport& report, const tSummary& summary);

/// Returns whether there is something to report: a message or a failure; if strict, also a warning.
[[nodiscard]] bool hasFindings(const tReport& report, bool strict) noexcept;

/// Finds plug-ins by name, in time that hostile names do not increase. The names are sorted for the first look-up,
/// because few reports need one. The report must outlive it.
class tNames {
public:
    explicit tNames(const tReport& report) : report_(report) {}

    /// Returns the position of the first plug-in of this name, or nullopt.
    [[nodiscard]] std::optional<std::size_t> first(std::string_view name) const;
    /// The same among those that have started.
    [[nodiscard]] std::optional<std::size_t> firstStarted(std::string_view name) const;
    /// Returns the plug-in that this name means among the dependencies of the one at the position: one that started
    /// earlier, otherwise the first of this name.
    [[nodiscard]] std::optional<std::size_t> meant(std::string_view dependency, std::size_t position) const;

private:
    using tPositions = std::vector<std::pair<std::string_view, std::size_t>>;
    struct tSorted {
        explicit tSorted(const tReport& report);

        tPositions all;  ///< one for each name, sorted
        tPositions started;
    };
    static void sort(tPositions& positions);
    static std::optional<std::size_t> find(const tPositions& positions, std::string_view name);
    [[nodiscard]] const tSorted& sorted() const;

    const tReport& report_;
    mutable std::optional<tSorted> sorted_{};
};

/// Returns whether a call of this phase can have ended with this meaning of a code.
[[nodiscard]] bool isLikely(const tCode& code, tPhase phase) noexcept;

/// Why a plug-in failed, and what to do. Texts are sentences without a final stop.
struct tCause {
    std::string cause;
    std::string remedy;
    std::optional<std::size_t> culprit{};  ///< the plug-in that has to be looked at first, if the cause is another one
};

/// Returns the likely causes of the plug-in's failure, the first at least; none if it has not failed.
[[nodiscard]] std::vector<tCause> findCauses(const tReport& report, const tNames& names, std::size_t plugin);

}  // namespace nStatus
