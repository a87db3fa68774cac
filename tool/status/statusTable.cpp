#include "tool/status/statusTable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "source/nDeployment.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/status/statusSummary.h"

namespace nStatus {
namespace {

enum class tStyle : std::uint8_t { plain, heading, dim, failure, warning };

constexpr std::size_t longestName = 40;  // in columns
constexpr std::string_view gap = "  ";

std::string_view escapeSequence(tStyle style) {
    switch (style) {
        case tStyle::heading: return "\x1B[1m";
        case tStyle::dim: return "\x1B[2m";
        case tStyle::failure: return "\x1B[1;31m";
        case tStyle::warning: return "\x1B[33m";
        case tStyle::plain: break;
    }
    return {};
}

/// A text that knows whether it has colours.
class tText {
public:
    explicit tText(bool colour) : colour_(colour) {}

    void append(std::string_view text, tStyle style = tStyle::plain) {
        const std::string_view start = colour_ ? escapeSequence(style) : std::string_view();
        text_.append(start).append(text);
        if (!start.empty()) text_.append("\x1B[0m");
    }
    void appendBlanks(std::size_t count) { text_.append(count, ' '); }
    void endLine() {
        while (text_.ends_with(' ')) text_.pop_back();
        text_.push_back('\n');
    }
    void reserve(std::size_t size) { text_.reserve(size); }
    std::string take() { return std::move(text_); }

private:
    bool colour_;
    std::string text_;
};

/// A text of unknown origin as it is shown. Refers to the text if it can be shown as it is.
class tShown {
public:
    explicit tShown(std::string_view text) {
        if (text.size() <= longestName && nPlainText::isPlain(text)) {
            text_ = text;
            columns_ = text.size();
        } else {
            fitted_ = nPlainText::shortened(nPlainText::printable(text), longestName);
            text_ = fitted_;
            columns_ = nPlainText::columns(text_);
        }
    }
    ~tShown() = default;
    tShown(const tShown&) = delete;
    tShown& operator=(const tShown&) = delete;

    [[nodiscard]] std::string_view text() const { return text_; }
    [[nodiscard]] std::size_t columns() const { return columns_; }

private:
    std::string fitted_{};
    std::string_view text_{};
    std::size_t columns_ = 0;
};

tStyle styleOf(std::int32_t code) {
    if (code < 0) return tStyle::failure;
    return code > 0 ? tStyle::warning : tStyle::plain;
}

/// Returns which call failed or warned, and why.
std::string noteOf(const tReport& report, const tNames& names, std::size_t position) {
    const tCall& call = *decisiveCall(report.plugins[position]);
    std::string note(tShown(call.entry).text());
    if (call.code > 0) return note + ": a warning of the plug-in's own";
    note += ": ";
    std::string_view separator;
    for (const tCause& cause : findCauses(report, names, position)) {
        note.append(separator).append(cause.cause);
        separator = ", or ";
    }
    return note;
}

/// The plug-ins, each on a line.
class tTable {
public:
    tTable(const tReport& report, const tSummary& summary, tText& text)
        : report_(report), summary_(summary), text_(text) {
        for (const tPlugin& plugin : report.plugins) {
            // No name takes more columns than bytes.
            if (plugin.name.size() > nameWidth_) {
                nameWidth_ = std::max(nameWidth_, tShown(plugin.name).columns());
            }
            const std::int32_t code = decisiveCode(plugin);
            if (code != 0) codeWidth_ = std::max(codeWidth_, std::to_string(code).size());
        }
    }

    void write() {
        writeHeading();
        const tNames names(report_);
        for (const std::size_t position : summary_.failuresFirst) {
            const tPlugin& plugin = report_.plugins[position];
            const std::int32_t code = decisiveCode(plugin);
            writeRow(plugin, code);
            if (code != 0) {
                text_.appendBlanks(gap.size());
                text_.append(noteOf(report_, names, position));
            }
            text_.endLine();
        }
    }

private:
    struct tColumn {
        std::string_view title;
        std::size_t width;  ///< of the title or of the longest duration, "71582 min"
    };
    static constexpr std::string_view nameTitle = "PLUG-IN";
    static constexpr std::string_view codeTitle = "CODE";
    static constexpr std::array<tColumn, 3> times{{{"INITIALIZE", 10}, {"STOP", 9}, {"CLEANUP", 9}}};

    [[nodiscard]] std::size_t shownTimes() const { return summary_.anyStopped ? times.size() : 1; }

    void writeName(std::string_view name, tStyle style) {
        const tShown shown(name);
        text_.append(shown.text(), style);
        text_.appendBlanks(nameWidth_ - shown.columns());
    }
    void alignRight(std::string_view text, std::size_t width, tStyle style) {
        text_.appendBlanks(gap.size() + width - text.size());
        text_.append(text, style);
    }

    void writeHeading() {
        writeName(nameTitle, tStyle::heading);
        alignRight(codeTitle, codeWidth_, tStyle::heading);
        for (std::size_t i = 0; i < shownTimes(); ++i) alignRight(times[i].title, times[i].width, tStyle::heading);
        text_.endLine();
    }

    void writeRow(const tPlugin& plugin, std::int32_t code) {
        writeName(plugin.name, styleOf(code));
        alignRight(std::to_string(code), codeWidth_, styleOf(code));
        for (std::size_t i = 0; i < shownTimes(); ++i) {
            const tCall* const call = findCall(plugin, static_cast<tPhase>(i));
            alignRight(call == nullptr ? std::string() : durationText(call->timeMs), times[i].width, tStyle::plain);
        }
    }

    const tReport& report_;
    const tSummary& summary_;
    tText& text_;
    std::size_t nameWidth_ = nameTitle.size();
    std::size_t codeWidth_ = codeTitle.size();
};

void writeMachine(tText& text, const tReport& report) {
    const bool deployment = (report.allowedMask & nDeployment::feature) != 0;
    std::string line = fmt::format("Updated {}, allowed {} (deployment {})", nPlainText::printable(report.updated),
                                   maskText(report.allowedMask), deployment ? "allowed" : "not allowed");
    if (report.initTimeMs) line += fmt::format(", prepared in {}", durationText(*report.initTimeMs));
    text.append(line, tStyle::dim);
    text.endLine();
}

void writeCounts(tText& text, const tReport& report, const tSummary& summary) {
    const tStyle good = summary.warned != 0 ? tStyle::warning : tStyle::heading;
    text.append(countsText(report, summary), summary.failed != 0 ? tStyle::failure : good);
    text.endLine();
}

void writeMessages(tText& text, const tReport& report) {
    if (report.messages.empty()) return;
    text.endLine();
    text.append("Messages", tStyle::heading);
    text.endLine();
    for (const std::string& message : report.messages) {
        text.append(gap);
        text.append(nPlainText::printable(message), tStyle::failure);
        text.endLine();
    }
}

/// Says what to do about failures, and what to think of ambiguous texts.
void writeHints(tText& text, const tReport& report, const tSummary& summary) {
    if (report.ambiguous) {
        text.append("\nThe file has lines after the first plug-in that belong to none; they are among the messages.\n");
    }
    if (summary.failed != 0) text.append("\n'ziptra explain NAME' says why a plug-in failed, and what to do.\n");
}

}  // namespace

std::string toTable(const tReport& report, bool colour) {
    const tSummary summary = summarize(report);
    tText text(colour);
    constexpr std::size_t usualLine = 100;
    text.reserve(report.plugins.size() * usualLine);
    writeMachine(text, report);
    writeCounts(text, report, summary);
    writeMessages(text, report);
    if (!report.plugins.empty()) {
        text.endLine();
        tTable(report, summary, text).write();
    }
    writeHints(text, report, summary);
    return text.take();
}

}  // namespace nStatus
