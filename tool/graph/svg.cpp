#include <algorithm>
#include <array>
#include <cmath>

#include "tool/format.h"
#include "tool/graph/graphText.h"
#include "tool/graph/layout.h"
#include "tool/graph/nodeText.h"
#include "tool/plainText.h"

namespace nGraph {
namespace {

// Widths of one column of text, generous for all fonts of the list in the style sheet.
constexpr double nameColumn = 7.9;   // at 13 pixels
constexpr double stateColumn = 6.7;  // at 11 pixels
constexpr double titleColumn = 9.7;  // at 16 pixels
constexpr std::size_t longestName = 34;
constexpr std::size_t longestTitle = 72;
constexpr std::size_t longestHint = 100;

constexpr double margin = 24;
constexpr double headerHeight = 56;
constexpr double boxHeight = 44;
constexpr double padding = 10;
constexpr double legendRow = 22;
constexpr double legendSample = 40;
constexpr double headLength = 8;
constexpr double smallestWidth = 420;
constexpr std::string_view direction = "An arrow leads from a dependency to the plug-in that needs it.";

constexpr std::array kinds{tLinkKind::fulfilled, tLinkKind::repeated, tLinkKind::failed,
                           tLinkKind::late,      tLinkKind::circular, tLinkKind::missing};

constexpr std::string_view styleSheet = R"css(
svg { color-scheme: light dark; background: #ffffff; --text: #1f2328; --quiet: #59636e; --line: #7d8590; --box: #f6f8fa;
  --order: #e4e8ec; --bad: #cf222e; --badBox: #fff0ee; --circle: #8250df; --warn: #9a6700 }
@media (prefers-color-scheme: dark) { svg { background: #0d1117; --text: #e6edf3; --quiet: #9198a1; --line: #7d8590;
  --box: #161b22; --order: #2a313a; --bad: #ff7b72; --badBox: #2d1517; --circle: #bc8cff; --warn: #d29922 } }
text { font: 13px ui-monospace, "Cascadia Mono", Consolas, "DejaVu Sans Mono", monospace; fill: var(--text) }
.title { font-size: 16px; font-weight: bold }
.state, .order, .sub { font-size: 11px; fill: var(--quiet) }
.order { text-anchor: middle }
.box { fill: var(--box); stroke: var(--line) }
.tab { fill: var(--order) }
.fails .box { fill: var(--badBox); stroke: var(--bad); stroke-width: 2.5 }
.fails .state { fill: var(--bad); font-weight: bold }
.circle .box { stroke: var(--circle); stroke-width: 2.5 }
.circle .state { fill: var(--circle) }
.unknown .box { fill: none; stroke: var(--warn); stroke-width: 1.5; stroke-dasharray: 3 3 }
.unknown .tab { fill: none }
.unknown .state { fill: var(--warn); font-weight: bold }
path { fill: none; stroke: var(--line); stroke-width: 1.3 }
path:hover { stroke-width: 4 }
path.repeated { stroke: var(--bad); stroke-width: 3 }
path.failed { stroke: var(--bad); stroke-dasharray: 7 4; stroke-width: 1.6 }
path.late { stroke: var(--warn); stroke-dasharray: 12 4; stroke-width: 1.8 }
path.circular { stroke: var(--circle); stroke-dasharray: 9 3 2 3; stroke-width: 2.4 }
path.missing { stroke: var(--warn); stroke-dasharray: 2 3; stroke-width: 1.8 }
marker path[class] { stroke: none; fill: var(--line) }
marker path.repeated[class], marker path.failed[class] { fill: var(--bad) }
marker path.circular[class] { fill: var(--circle) }
marker path.late[class], marker path.missing[class] { fill: var(--warn) }
)css";

/// Returns the number in tenths, as few characters as possible: formatting real numbers exactly needs large tables.
std::string number(double value) {
    const long long tenths = std::llround(value * 10);
    std::string text = std::to_string(tenths / 10);
    if (tenths % 10 != 0) text.append(".").append(std::to_string(tenths % 10));
    return text;
}

std::string attribute(std::string_view name, double value) {
    return std::string(" ").append(name).append("=\"").append(number(value)).append("\"");
}

double columns(std::string_view text) { return static_cast<double>(nPlainText::columns(text)); }

/// Returns a text element. The text is printable and not yet escaped.
std::string textElement(std::string_view style, double x, double y, std::string_view text) {
    std::string element = "<text";
    if (!style.empty()) element.append(" class=\"").append(style).append("\"");
    element.append(attribute("x", x)).append(attribute("y", y)).append(">");
    return element.append(nPlainText::escapedMarkup(text)).append("</text>");
}

std::string hint(std::string_view text) { return "<title>" + nPlainText::escapedMarkup(text) + "</title>"; }

/// What is written into a box.
struct tBoxText {
    std::string order;
    std::string name;
    std::string state;
};

class tPicture {
public:
    tPicture(const tGraph& graph, const std::string& title)
        : graph_(graph),
          title_(nPlainText::shortened(nPlainText::printableInXml(title), longestTitle)),
          summary_(summary(graph)) {
        const std::vector<std::string> states = stateTexts(graph);
        for (std::size_t index = 0; index < graph.nodes.size(); ++index) {
            const tNode& node = graph.nodes[index];
            texts_.push_back({node.described ? std::to_string(index + 1) : "?",
                              nPlainText::shortened(nPlainText::printableInXml(node.name), longestName),
                              states[index]});
            hintNames_.push_back(nPlainText::shortened(nPlainText::printableInXml(node.name), longestHint));
        }
        measure();
        layout_ = arrange(graph, {boxWidth_, boxHeight});
    }

    std::string render() {
        std::string body = header();
        for (const tRoute& route : layout_.routes) body += routeElement(route);
        for (std::size_t index = 0; index < graph_.nodes.size(); ++index) body += boxElement(index);
        const double width = 2 * margin + std::max({layout_.width, titleWidth(), smallestWidth});
        double bottom = margin + headerHeight + layout_.height;
        body += legend(width - margin, bottom);
        return opening(width, bottom + margin) + body + "</svg>\n";
    }

private:
    void measure() {
        double name = 0;
        double state = 0;
        double order = 0;
        for (const tBoxText& text : texts_) {
            name = std::max(name, columns(text.name) * nameColumn);
            state = std::max(state, columns(text.state) * stateColumn);
            order = std::max(order, columns(text.order) * stateColumn);
        }
        tabWidth_ = order + 2 * padding;
        boxWidth_ = tabWidth_ + std::max(name, state) + 2 * padding;
    }

    [[nodiscard]] double titleWidth() const {
        return std::max(columns(title_) * titleColumn, columns(summary_) * stateColumn);
    }

    static std::string opening(double width, double height) {
        std::string text = R"(<svg xmlns="http://www.w3.org/2000/svg" role="img" aria-labelledby="title summary")";
        text.append(attribute("width", width)).append(attribute("height", height));
        text.append(" viewBox=\"0 0 ").append(number(width)).append(" ").append(number(height)).append("\">\n<style>");
        text.append(styleSheet).append("</style>\n<defs>");
        for (const tLinkKind kind : kinds) {
            text.append("<marker id=\"").append(kindName(kind));
            text.append(R"(Head" viewBox="0 0 10 10" refX="1" refY="5" markerWidth="9" markerHeight="9" )"
                        R"(markerUnits="userSpaceOnUse" orient="auto-start-reverse"><path class=")");
            text.append(kindName(kind)).append(R"(" d="M0 0.5L10 5L0 9.5z"/></marker>)");
        }
        return text.append("</defs>\n");
    }

    [[nodiscard]] std::string header() const {
        return "<title id=\"title\">" + nPlainText::escapedMarkup(title_) + "</title><desc id=\"summary\">" +
               nPlainText::escapedMarkup(summary_) + "</desc>\n" + textElement("title", margin, margin + 14, title_) +
               textElement("sub", margin, margin + 34, summary_) + "\n";
    }

    static std::string point(const tPoint& point) {
        return number(point.x + margin) + " " + number(point.y + margin + headerHeight);
    }

    static std::string pathData(const tRoute& route) {
        // A line ends where its head begins: a thick one would otherwise hide the tip.
        tPoint from = route.points.front();
        if (route.headAtLeft) from.x += headLength;
        std::string data = fmt::format("M{}", point(from));
        for (std::size_t i = 1; i < route.points.size(); ++i) {
            tPoint to = route.points[i];
            if (route.headAtRight && i + 1 == route.points.size()) to.x += route.loop ? headLength : -headLength;
            const double reach = route.loop ? 24 : (to.x - from.x) / 2;
            const tPoint first{from.x + reach, from.y};
            const tPoint second{route.loop ? to.x + reach : to.x - reach, to.y};
            if (!route.loop && from.y == to.y) {
                data += fmt::format("L{}", point(to));
            } else {
                data += fmt::format("C{} {} {}", point(first), point(second), point(to));
            }
            from = to;
        }
        return data;
    }

    [[nodiscard]] std::string routeElement(const tRoute& route) const {
        const std::string kind(kindName(route.kind));
        std::string element = "<path class=\"" + kind + "\"";
        if (route.headAtLeft) element += " marker-start=\"url(#" + kind + "Head)\"";
        if (route.headAtRight) element += " marker-end=\"url(#" + kind + "Head)\"";
        element += " d=\"" + pathData(route) + "\"";
        if (!route.link) return element + "/>\n";
        const tLink& link = graph_.links[*route.link];
        const std::string text = hintNames_[link.dependant] + " depends on " + hintNames_[link.dependency] + ": " +
                                 std::string(kindText(link.kind));
        return element + ">" + hint(text) + "</path>\n";
    }

    [[nodiscard]] static std::string_view styleOf(const tNode& node) {
        if (!node.described) return " class=\"unknown\"";
        if (!node.fails()) return {};
        return node.circle != 0 ? " class=\"fails circle\"" : " class=\"fails\"";
    }

    [[nodiscard]] std::string boxElement(std::size_t index) const {
        const tNode& node = graph_.nodes[index];
        const double x = layout_.boxes[index].x + margin;
        const double y = layout_.boxes[index].y + margin + headerHeight;
        const tBoxText& text = texts_[index];
        std::string element = "<g" + std::string(styleOf(node)) + ">";
        element += hint(nPlainText::printableInXml(node.file.empty() ? node.name : node.name + " (" + node.file + ")"));
        element += R"(<rect class="box" rx="6")" + attribute("x", x) + attribute("y", y) +
                   attribute("width", boxWidth_) + attribute("height", boxHeight) + "/>";
        element += R"(<rect class="tab" rx="4")" + attribute("x", x + 4) + attribute("y", y + 4) +
                   attribute("width", tabWidth_ - 8) + attribute("height", boxHeight - 8) + "/>";
        element += textElement("order", x + tabWidth_ / 2, y + boxHeight / 2 + 4, text.order);
        element += textElement({}, x + tabWidth_ + padding / 2, y + 19, text.name);
        element += textElement("state", x + tabWidth_ + padding / 2, y + 35, text.state);
        return element + "</g>\n";
    }

    /// Returns samples of the kinds of lines that occur, in rows, and moves the bottom below them.
    [[nodiscard]] std::string legend(double right, double& bottom) const {
        std::string text;
        double x = margin;
        double y = bottom + margin;
        for (const tLinkKind kind : kinds) {
            const bool occurs = std::any_of(layout_.routes.begin(), layout_.routes.end(),
                                            [kind](const tRoute& route) { return route.kind == kind; });
            if (!occurs) continue;
            const std::string words = "dependency " + std::string(kindText(kind));
            const double width = legendSample + padding + columns(words) * stateColumn + margin;
            if (x > margin && x + width > right) {
                x = margin;
                y += legendRow;
            }
            tRoute sample;
            const tPoint start{x - margin, y - margin - headerHeight};
            sample.points = {start, {start.x + legendSample, start.y}};
            sample.kind = kind;
            sample.headAtRight = true;
            text += routeElement(sample) + textElement("sub", x + legendSample + padding, y + 4, words) + "\n";
            x += width;
            bottom = y;
        }
        if (layout_.routes.empty()) return text;
        bottom += legendRow;
        return text + textElement("sub", margin, bottom + 4, direction) + "\n";
    }

    const tGraph& graph_;
    std::string title_;
    std::string summary_;
    std::vector<tBoxText> texts_;
    std::vector<std::string> hintNames_;  ///< of the nodes, in the hints of links
    double tabWidth_ = 0;
    double boxWidth_ = 0;
    tLayout layout_;
};

}  // namespace

std::string toSvg(const tGraph& graph, const std::string& title) { return tPicture(graph, title).render(); }

}  // namespace nGraph
