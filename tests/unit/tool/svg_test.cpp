#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/unit/tool/graphs.h"
#include "tests/unit/tool/markup.h"
#include "tool/graph/graphText.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::graphOfAllKinds;
using support::plugin;
using testing::HasSubstr;
using testing::Not;

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

/// Returns the number after `name="` in the text from the position on.
double attribute(const std::string& text, const std::string& name, std::size_t from = 0) {
    return std::atof(text.c_str() + text.find(" " + name + "=\"", from) + name.size() + 3);
}

TEST(nGraphSvg, IsWellFormedWhateverTheNamesContain) {
    tGraph graph =
        graphOf({plugin("<script>\"'&amp;]]>"), plugin("\xFF\x01\xEF\xBF\xBF\xEF\xBF\xBE", {"<!--"}, -52006),
                 plugin("漢字 e\xCC\x81 \xF0\x9F\x99\x82"), plugin("\xE2\x80\xAE right to left"), plugin("")});
    graph.nodes[0].file = "\"><x>.ini";
    const std::string svg = toSvg(graph, "C:\\<\"&>");
    EXPECT_EQ(support::markupError(svg), "");
    EXPECT_THAT(svg, HasSubstr("&lt;script&gt;&quot;'&amp;amp;]]&gt;"));
    EXPECT_THAT(svg, Not(HasSubstr("\xEF\xBF\xBF")));
    EXPECT_THAT(svg, Not(HasSubstr("\xEF\xBF\xBE")));
    EXPECT_THAT(svg, Not(HasSubstr("\xE2\x80\xAE")));
}

TEST(nGraphSvg, ContainsABoxForEachNodeAndALineForEachLink) {
    const std::string svg = toSvg(graphOfAllKinds(), "title");
    EXPECT_EQ(support::markupError(svg), "");
    EXPECT_EQ(count(svg, "class=\"box\""), 11U);
    EXPECT_EQ(count(svg, " depends on "), 7U);
}

TEST(nGraphSvg, ShowsOrderNameAndStateOfAPlugin) {
    const std::string svg = toSvg(graphOf({plugin("Settings"), plugin("Transport", {"Settings"}, -52002)}), "title");
    EXPECT_THAT(svg, HasSubstr(">2</text>"));
    EXPECT_THAT(svg, HasSubstr(">Transport</text>"));
    EXPECT_THAT(svg, HasSubstr(">fails -52002: not allowed</text>"));
}

TEST(nGraphSvg, MakesWhatFailsStandOut) {
    const std::string svg = toSvg(graphOfAllKinds(), "title");
    EXPECT_EQ(count(svg, "<g class=\"fails\">"), 5U);
    EXPECT_EQ(count(svg, "<g class=\"fails circle\">"), 2U);
    EXPECT_EQ(count(svg, "<g class=\"unknown\">"), 1U);
    EXPECT_EQ(count(svg, "<g>"), 3U);
    EXPECT_EQ(count(svg, "stroke-dasharray"), 5U) << "the lines differ without colour, too";
}

TEST(nGraphSvg, SaysWhatEachLineMeans) {
    const std::string svg = toSvg(graphOfAllKinds(), "title");
    EXPECT_THAT(svg, HasSubstr("<title>Early depends on Late: starts too late</title>"));
    EXPECT_THAT(svg, HasSubstr("<title>CircleA depends on CircleB: in a circle</title>"));
    for (const char* const kind : {"fulfilled", "repeated", "failed", "late", "circular", "missing"}) {
        EXPECT_THAT(svg, HasSubstr(std::string("url(#") + kind + "Head)"));
    }
}

TEST(nGraphSvg, ExplainsOnlyTheLinesThatOccur) {
    const std::string svg = toSvg(graphOf({plugin("A"), plugin("B", {"A"})}), "title");
    EXPECT_THAT(svg, HasSubstr(">dependency starts first</text>"));
    EXPECT_THAT(svg, Not(HasSubstr(">dependency fails</text>")));
    EXPECT_THAT(svg, HasSubstr("An arrow leads from a dependency to the plug-in that needs it."));
    EXPECT_THAT(toSvg(graphOf({plugin("A")}), "title"), Not(HasSubstr("An arrow")));
}

TEST(nGraphSvg, PointsALineOfACircleThatRunsBackwardsAtTheDependant) {
    const std::string svg = toSvg(graphOf({plugin("A", {"B"}, -1), plugin("B", {"A"}, -1)}), "title");
    EXPECT_EQ(count(svg, "marker-start="), 1U);
    EXPECT_EQ(count(svg, "marker-end="), 2U) << "one of the circle, one of the legend";
}

TEST(nGraphSvg, EndsALineBeforeItsHead) {
    const std::string svg = toSvg(graphOf({plugin("A"), plugin("B", {"A"})}), "title");
    const std::size_t path = svg.find("<path class=\"fulfilled\" marker-end");
    const double boxB = attribute(svg, "x", svg.find("<rect class=\"box\"", svg.find("<title>B</title>")));
    const std::string data = svg.substr(path, svg.find("/>", path) - path);
    EXPECT_THAT(data, HasSubstr("L" + std::to_string(static_cast<int>(boxB) - 8)));
}

TEST(nGraphSvg, ShortensLongNamesAndShowsThemWholeAsAHint) {
    const std::string name(80, 'n');
    tGraph graph = graphOf({plugin(name), plugin("B", {name})});
    graph.nodes[1].file = "b.ini";
    const std::string svg = toSvg(graph, "title");
    EXPECT_THAT(svg, HasSubstr("<title>" + name + "</title>"));
    EXPECT_THAT(svg, HasSubstr("<title>B (b.ini)</title>"));
    EXPECT_THAT(svg, HasSubstr(">" + std::string(33, 'n') + "…</text>"));
}

TEST(nGraphSvg, DoesNotRepeatALongNameForEachLine) {
    std::string marks;  // take no columns
    while (marks.size() < 100'000) marks += "\xCC\x81";
    std::vector<std::string> dependencies;
    for (int i = 0; i < 1000; ++i) dependencies.push_back("D" + std::to_string(i));
    EXPECT_LT(toSvg(graphOf({plugin(marks, dependencies, -52006)}), "title").size(), 3'000'000U);
}

TEST(nGraphSvg, LeavesRoomForEveryText) {
    const std::string svg = toSvg(graphOf({plugin(std::string(34, 'W')), plugin("B")}), std::string(200, 'T'));
    constexpr double widthOfALetter = 7.83;  // of DejaVu Sans Mono, the widest of the fonts, at 13 pixels
    const std::size_t box = svg.find("<rect class=\"box\"");
    const double right = attribute(svg, "x", box) + attribute(svg, "width", box);
    const double left = attribute(svg, "x", svg.rfind("<text", svg.find(">" + std::string(34, 'W'))));
    EXPECT_LE(left + 34 * widthOfALetter, right);
    constexpr double widthOfATitleLetter = 9.64;  // at 16 pixels
    EXPECT_GE(attribute(svg, "width"), 2 * 24 + 72 * widthOfATitleLetter);
    EXPECT_THAT(svg, HasSubstr(">" + std::string(71, 'T') + "…</text>"));
}

TEST(nGraphSvg, LoadsNothing) {
    std::string svg = toSvg(graphOfAllKinds(), "title");
    EXPECT_EQ(count(svg, "http"), 1U) << "only the name of the format";
    EXPECT_THAT(svg, HasSubstr("xmlns=\"http://www.w3.org/2000/svg\""));
    EXPECT_THAT(svg, Not(HasSubstr("@import")));
    EXPECT_EQ(count(svg, "url("), count(svg, "url(#"));
}

TEST(nGraphSvg, AdaptsToDarkSurroundings) {
    EXPECT_THAT(toSvg(graphOf({}), "title"), HasSubstr("@media (prefers-color-scheme: dark)"));
}

TEST(nGraphSvg, SaysWhatItIsAboveTheGraphAndToScreenReaders) {
    const std::string svg = toSvg(graphOfAllKinds(), "C:\\plugins");
    EXPECT_THAT(svg, HasSubstr("<title id=\"title\">C:\\plugins</title>"));
    EXPECT_THAT(svg, HasSubstr("<desc id=\"summary\">10 plug-ins: 3 can start"));
    EXPECT_THAT(svg, HasSubstr(">C:\\plugins</text>"));
    EXPECT_THAT(svg, HasSubstr(">10 plug-ins: 3 can start, 7 fail; 1 circle"));
}

TEST(nGraphSvg, WrapsTheLegendToTheWidthOfThePicture) {
    // One layer of boxes next to another is narrower than the six lines of the legend side by side.
    const std::string svg = toSvg(graphOfAllKinds(), "title");
    const double width = attribute(svg, "width");
    for (const char* const words : {"dependency starts first", "dependency not described", "dependency in a circle"}) {
        const std::size_t text = svg.rfind("<text", svg.find(std::string(">") + words));
        EXPECT_LT(attribute(svg, "x", text), width);
        EXPECT_LT(attribute(svg, "y", text), attribute(svg, "height"));
    }
}

}  // namespace
}  // namespace nGraph
