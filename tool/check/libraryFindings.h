#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "source/nPluginData.h"
#include "tool/check/descriptionFile.h"
#include "tool/check/predictedStarts.h"
#include "tool/pe/resolve.h"

namespace nCheck {

/// What is examined: a plug-in's description, and where its findings go.
struct tExamined {
    const tPluginDescription& description;
    const tKeyLines& lines;
    tFileFindings& findings;

    /// Adds a finding for the line of this key.
    void add(std::string_view key, std::string_view rule, std::string message, std::string remedy = {}) const {
        findings.add(rule, lines.of(key), std::move(message), std::move(remedy));
    }
};

/// These return what becomes of the load, and find the reasons.

/// Examines the library itself: its processor, its kind, and the entries that the description names.
[[nodiscard]] tLoadVerdict examineLibrary(const nPe::tLibrary& library, const tExamined& examined);

/// Examines a file that is no readable library, or not even a file.
[[nodiscard]] tLoadVerdict examineUnreadable(const std::string& file, const nPe::tUnreadable& unreadable,
                                             const tExamined& examined);

/// Examines the imports that the loader cannot resolve.
[[nodiscard]] tLoadVerdict examineMissing(const std::vector<nPe::tMissing>& missing, const tExamined& examined);

/// Returns the same without finding anything. Windows does not load a library that lacks a function, but Wine does.
[[nodiscard]] tLoadVerdict verdictOf(const std::vector<nPe::tMissing>& missing) noexcept;

}  // namespace nCheck
