#include "tool/status/statusHtml.h"

#include <algorithm>
#include <array>

#include "source/nDeployment.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/status/statusHtmlStyle.h"
#include "tool/status/statusLanes.h"
#include "tool/status/statusSummary.h"

namespace nStatus {
namespace {

constexpr std::size_t laneColumns = 8;
constexpr std::size_t laneColours = 6;
constexpr std::size_t laneWidth = 9;   // in pixels
constexpr std::size_t nodeWidth = 12;  // of the dot beside a plug-in
constexpr std::size_t shownDependencies = 30;

std::string escaped(std::string_view text) { return nPlainText::escapedMarkup(nPlainText::printable(text)); }

/// Returns the text as a sentence. Requires: a text that is not empty.
std::string sentence(std::string text) {
    if (text.front() >= 'a' && text.front() <= 'z') text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return escaped(text) + ".";
}

/// Returns a name, separated from the direction of writing around it.
std::string named(std::string_view name) {
    if (name.empty()) return "<span class=\"soft\">(no name)</span>";
    return fmt::format("<bdi>{}</bdi>", escaped(name));
}

/// What all parts of the document need to know.
struct tDocument {
    explicit tDocument(const tReport& r)
        : report(r), summary(summarize(r)), names(r), lanes(drawLanes(r, names, laneColumns)) {}

    const tReport& report;
    tSummary summary;
    tNames names;
    tLanes lanes;
    std::string text{};
};

void writeFact(std::string& text, std::string_view title, std::string_view value) {
    text.append(fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", title, value));
}

std::string verdict(const tDocument& document) {
    const std::size_t plugins = document.report.plugins.size();
    const std::size_t failed = document.summary.failed;
    const std::size_t messages = document.report.messages.size();
    if (failed != 0) return fmt::format("{} of {} plug-in{} failed", failed, plugins, plugins == 1 ? "" : "s");
    if (messages != 0) return fmt::format("{} message{}, but no plug-in failed", messages, messages == 1 ? "" : "s");
    if (plugins == 0) return "No plug-ins";
    return plugins == 1 ? "The plug-in is all right" : fmt::format("All {} plug-ins are all right", plugins);
}

void writeFacts(tDocument& document) {
    const tReport& report = document.report;
    std::string& text = document.text;
    const bool deployment = (report.allowedMask & nDeployment::feature) != 0;
    text += "<dl class=\"facts\">\n";
    writeFact(text, "Updated", escaped(report.updated));
    writeFact(text, "Deployment", deployment ? "allowed" : "<span class=\"warn\">not allowed</span>");
    writeFact(text, "Allowed features", fmt::format("<code>{}</code>", maskText(report.allowedMask)));
    if (report.initTimeMs) writeFact(text, "Preparation", durationText(*report.initTimeMs));
    writeFact(text, "Longest call", durationText(document.summary.longestMs));
    text += "</dl>\n";
}

void writeHead(tDocument& document) {
    const bool bad = hasFindings(document.report, false);
    document.text.append(fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'; "
        "img-src data:\">\n<link rel=\"icon\" href=\"data:,\">\n<title>{0} \xE2\x80\x93 Ziptra status</title>\n"
        "<style>{1}</style>\n</head>\n<body>\n<header>\n<h1>ZU-Ziptra Remote Configuration and Deployment</h1>\n"
        "<p class=\"verdict {2}\">{0}</p>\n",
        verdict(document), htmlStyle, bad ? "bad" : "good"));
    writeFacts(document);
    document.text += "</header>\n<main>\n";
}

void writeMessages(tDocument& document) {
    if (document.report.messages.empty()) return;
    document.text += "<ul class=\"messages\">\n";
    for (const std::string& message : document.report.messages) {
        document.text.append(fmt::format("<li><bdi>{}</bdi></li>\n", escaped(message)));
    }
    document.text += "</ul>\n";
}

void writeCause(std::string& text, const tCause& cause, bool another) {
    const std::string remedy = sentence(cause.remedy);
    text.append(fmt::format("<p>{}</p>\n<p class=\"remedy\">", sentence((another ? "or " : "") + cause.cause)));
    text.append(cause.culprit ? fmt::format("<a href=\"#p{}\">{}</a>", *cause.culprit + 1, remedy) : remedy);
    text += "</p>\n";
}

/// Requires: a plug-in that failed or warned.
void writeCard(tDocument& document, std::size_t position) {
    const tPlugin& plugin = document.report.plugins[position];
    const tCall& call = *decisiveCall(plugin);
    std::string& text = document.text;
    text.append(fmt::format("<li{}><h3><a href=\"#p{}\">{}</a> <code>{}</code></h3>\n<p class=\"soft\">{}, {}</p>\n",
                            call.code > 0 ? " class=\"mild\"" : "", position + 1, named(plugin.name), call.code,
                            named(call.entry), durationText(call.timeMs)));
    const std::vector<tCause> causes = findCauses(document.report, document.names, position);
    for (const tCause& cause : causes) writeCause(text, cause, &cause != &causes.front());
    if (call.code > 0) text += "<p>A warning of the plug-in's own.</p>\n";
    text += "</li>\n";
}

void writeFindings(tDocument& document) {
    const tSummary& summary = document.summary;
    const std::size_t cards = summary.failed + summary.warned;
    if (cards == 0 && document.report.messages.empty()) return;
    document.text += "<section>\n<h2>What needs attention</h2>\n";
    writeMessages(document);
    if (cards != 0) document.text += "<ol class=\"cards\">\n";
    for (std::size_t i = 0; i < cards; ++i) writeCard(document, summary.failuresFirst[i]);
    if (cards != 0) document.text += "</ol>\n";
    document.text += "</section>\n";
}

std::size_t lanesWidth(const tDocument& document) { return document.lanes.count * laneWidth + nodeWidth; }

/// Draws what the row shows of the lanes. The height is 100, stretched to the row's.
void writeLanes(tDocument& document, std::size_t row) {
    const std::vector<tLane>& lanes = document.lanes.rows[row];
    if (lanes.empty()) return;
    const std::size_t width = lanesWidth(document);
    const std::size_t node = width - nodeWidth / 2;
    document.text.append(
        fmt::format(R"(<svg viewBox="0 0 {} 100" preserveAspectRatio="none" aria-hidden="true">)", width));
    for (const tLane& lane : lanes) {
        const std::size_t x = lane.number * laneWidth + laneWidth / 2;
        std::string path;
        if (lane.through) path += fmt::format("M{} 0V100", x);
        if (lane.fromAbove) path += fmt::format("M{0} 0C{0} 50 {0} 50 {1} 50", x, node);
        if (lane.toBelow) path += fmt::format("M{1} 50C{0} 50 {0} 50 {0} 100", x, node);
        document.text.append(fmt::format(R"(<path class="l{}{}" d="{}"/>)", lane.number % laneColours,
                                         lane.failed ? " dead" : "", path));
    }
    document.text += "</svg>";
}

void writeDependency(tDocument& document, std::string_view dependency, std::size_t row) {
    const auto meant = document.names.meant(dependency, row);
    if (!meant) {
        document.text.append(fmt::format("<span class=\"bad\">{} (missing)</span>", named(dependency)));
        return;
    }
    const auto started = document.names.firstStarted(dependency);
    const bool bad = !started || *started >= row;
    document.text.append(
        fmt::format("<a href=\"#p{}\"{}>{}</a>", *meant + 1, bad ? " class=\"bad\"" : "", named(dependency)));
}

void writeNeeds(tDocument& document, std::size_t row) {
    const std::vector<std::string_view>& dependencies = document.report.plugins[row].dependencies;
    if (dependencies.empty()) return;
    document.text += "<div class=\"needs\">needs ";
    const std::size_t shown = std::min(dependencies.size(), shownDependencies);
    for (std::size_t i = 0; i < shown; ++i) {
        if (i != 0) document.text += ", ";
        writeDependency(document, dependencies[i], row);
    }
    if (shown < dependencies.size()) {
        document.text.append(fmt::format(" and {} more", dependencies.size() - shown));
    }
    document.text += "</div>";
}

void writeCall(tDocument& document, const tCall& call) {
    // In tenths of a percent; 2^32 ms times 1000 fit into 64 bits.
    const std::uint64_t longest = std::max<std::uint64_t>(document.summary.longestMs, 1);
    const std::uint64_t share = call.timeMs * 1000 / longest;
    document.text.append(
        fmt::format(R"(<div class="call"><span class="entry">{}</span><span class="track">)", named(call.entry)));
    if (call.timeMs != 0) {
        document.text.append(
            fmt::format(R"(<i class="{}" style="width:{}.{}%"></i>)", phaseName(call.phase), share / 10, share % 10));
    }
    document.text.append(fmt::format("</span><span class=\"time\">{}</span></div>", durationText(call.timeMs)));
}

std::string_view codeStyle(std::int32_t code) {
    if (code < 0) return " bad";
    return code > 0 ? " warn" : " soft";
}

void writePlugin(tDocument& document, std::size_t row) {
    const tPlugin& plugin = document.report.plugins[row];
    const std::int32_t code = decisiveCode(plugin);
    std::string& text = document.text;
    text.append(fmt::format("<li id=\"p{}\"{}>", row + 1, code < 0 ? " class=\"failed\"" : ""));
    writeLanes(document, row);
    text.append(fmt::format(R"(<i class="dot"></i><div><span class="name">{}</span>)", named(plugin.name)));
    writeNeeds(document, row);
    text += "</div><div class=\"calls\">";
    for (const tCall& call : plugin.calls) writeCall(document, call);
    if (plugin.calls.empty()) text += "<span class=\"soft\">started in no time</span>";
    text.append(fmt::format("</div><code class=\"code{}\">{}</code></li>\n", codeStyle(code), code));
}

void writeLegend(tDocument& document) {
    constexpr std::array titles{"Initialize", "Stop", "Cleanup"};
    const std::size_t shown = document.summary.anyStopped ? titles.size() : 1;
    document.text += "<p class=\"legend\">";
    for (std::size_t i = 0; i < shown; ++i) {
        document.text.append(
            fmt::format("<span><b class=\"{}\"></b>{}</span>", phaseName(static_cast<tPhase>(i)), titles[i]));
    }
    document.text.append(fmt::format("<span>the longest bar is {}</span>", durationText(document.summary.longestMs)));
    if (document.lanes.count != 0) {
        document.text += "<span>a line leads from a plug-in to those that need it</span>";
    }
    document.text += "</p>\n";
}

void writePlugins(tDocument& document) {
    if (document.report.plugins.empty()) return;
    document.text += "<section>\n<h2>Start order</h2>\n";
    writeLegend(document);
    document.text.append(fmt::format("<ol class=\"plugins\" style=\"--lanes:{}px\">\n", lanesWidth(document)));
    for (std::size_t row = 0; row < document.report.plugins.size(); ++row) writePlugin(document, row);
    document.text += "</ol>\n</section>\n";
}

void writeFoot(tDocument& document) {
    std::string& text = document.text;
    text += "</main>\n<footer>\n";
    if (!document.lanes.complete) text += "<p>Not all dependencies are drawn: there are too many side by side.</p>\n";
    if (document.report.ambiguous) {
        text +=
            "<p>The status file has lines after the first plug-in that belong to none; they are among the "
            "messages.</p>\n";
    }
    text += "<p>Codes: 0 success, negative failure, positive warning.</p>\n</footer>\n</body>\n</html>\n";
}

}  // namespace

std::string toHtml(const tReport& report) {
    tDocument document(report);
    writeHead(document);
    writeFindings(document);
    writePlugins(document);
    writeFoot(document);
    return std::move(document.text);
}

}  // namespace nStatus
