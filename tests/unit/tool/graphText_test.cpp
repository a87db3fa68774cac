#include "tool/graph/graphText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/graphs.h"

namespace nGraph {
namespace {

using support::graphOf;
using support::graphOfAllKinds;
using support::plugin;
using testing::HasSubstr;
using testing::Not;

TEST(nGraphText, WritesDotWithAnArrowFromEachDependency) {
    EXPECT_EQ(toDot(graphOf({plugin("Settings"), plugin("Transport", {"Settings"}, std::nullopt)})),
              "digraph plugins {\n"
              "  rankdir=LR;\n"
              "  node [shape=box, style=\"rounded\", fontname=\"sans-serif\"];\n"
              "  edge [fontname=\"sans-serif\", fontsize=10];\n"
              "  p1 [label=\"1. Settings\\nstarts\"];\n"
              "  p2 [label=\"2. Transport\\ncan start\"];\n"
              "  p1 -> p2;\n"
              "}\n");
}

TEST(nGraphText, MakesWhatFailsStandOutInDotWithoutColour) {
    const std::string dot = toDot(graphOfAllKinds());
    EXPECT_THAT(dot, HasSubstr("p1 [label=\"1. Broken\\nfails -52005: library\", style=\"rounded,bold\", "
                               "color=\"#cf222e\", penwidth=2];\n"));
    EXPECT_THAT(dot, HasSubstr("p2 [label=\"2. CircleA\\nfails -52006: circle 1\", style=\"rounded,bold,diagonals\", "
                               "color=\"#8250df\", penwidth=2];\n"));
    EXPECT_THAT(dot, HasSubstr("p11 [label=\"Gone\\nnot described\", style=\"dashed\", color=\"#9a6700\"];\n"));
    EXPECT_THAT(dot, HasSubstr("p3 -> p2 [color=\"#8250df\", style=bold, label=\"circle\"];\n"));
    EXPECT_THAT(dot, HasSubstr("p5 -> p4 [color=\"#9a6700\", style=dashed, label=\"starts too late\"];\n"));
    EXPECT_THAT(dot, HasSubstr("p11 -> p6 [color=\"#9a6700\", style=dotted, label=\"missing\"];\n"));
    EXPECT_THAT(dot, HasSubstr("p7 -> p8 [color=\"#cf222e:#cf222e\", label=\"named twice\"];\n"));
    EXPECT_THAT(dot, HasSubstr("p7 -> p9;\n"));
    EXPECT_THAT(dot, HasSubstr("p1 -> p10 [color=\"#cf222e\", style=dashed];\n"));
}

TEST(nGraphText, DoesNotMarkAPluginOfAHarmlessCircle) {
    // The second A has started, although the first is in a circle.
    const tGraph graph = graphOf({plugin("A"), plugin("A", {"A"})});
    EXPECT_THAT(toDot(graph), Not(HasSubstr("diagonals")));
}

TEST(nGraphText, EscapesWhatDotWouldRead) {
    EXPECT_THAT(toDot(graphOf({plugin(R"(a"]; b\N&lt;<b>)")})),
                HasSubstr(R"(label="1. a\"]; b\\N&amp;lt;<b>\nstarts")"));
}

TEST(nGraphText, ReplacesWhatIsNotPrintableInDot) {
    EXPECT_THAT(toDot(graphOf({plugin("a\n\xFF")})), HasSubstr("1. a\xEF\xBF\xBD\xEF\xBF\xBD\\n"));
}

TEST(nGraphText, ShortensLongNames) {
    const tGraph graph = graphOf({plugin(std::string(100, 'n'))});
    EXPECT_THAT(toDot(graph), HasSubstr("1. " + std::string(59, 'n') + "…\\n"));
    EXPECT_THAT(toMermaid(graph), HasSubstr("\"" + std::string(59, 'n') + "…<br/>"));
}

TEST(nGraphText, WritesMermaidWithAnArrowFromEachDependency) {
    EXPECT_EQ(toMermaid(graphOf({plugin("Settings"), plugin("Transport", {"Settings"}, std::nullopt)})),
              "flowchart LR\n"
              "  p1[\"Settings<br/>1#58; starts\"]\n"
              "  p2[\"Transport<br/>2#58; can start\"]\n"
              "  p1 --> p2\n"
              "  classDef failed stroke:#cf222e,stroke-width:3px\n"
              "  classDef circle stroke:#8250df,stroke-width:3px\n"
              "  classDef missing stroke:#9a6700,stroke-dasharray:4 3\n");
}

TEST(nGraphText, MakesWhatFailsStandOutInMermaidWithoutColour) {
    const std::string mermaid = toMermaid(graphOfAllKinds());
    EXPECT_THAT(mermaid, HasSubstr("p1[\"Broken<br/>1#58; fails #45;52005#58; library\"]:::failed\n"));
    EXPECT_THAT(mermaid, HasSubstr("p2[\"CircleA<br/>2#58; fails #45;52006#58; circle 1\"]:::circle\n"));
    EXPECT_THAT(mermaid, HasSubstr("p11[\"Gone<br/>not described\"]:::missing\n"));
    EXPECT_THAT(mermaid, HasSubstr("p3 ==>|circle| p2\n"));
    EXPECT_THAT(mermaid, HasSubstr("p5 -.->|starts too late| p4\n"));
    EXPECT_THAT(mermaid, HasSubstr("p11 -.->|missing| p6\n"));
    EXPECT_THAT(mermaid, HasSubstr("p7 -->|named twice| p8\n"));
    EXPECT_THAT(mermaid, HasSubstr("p7 --> p9\n"));
    EXPECT_THAT(mermaid, HasSubstr("p1 -.-> p10\n"));
}

TEST(nGraphText, EscapesEverySignThatMermaidCouldRead) {
    EXPECT_THAT(toMermaid(graphOf({plugin("1. `a\"]-->b#<漢 z9AZ")})),
                HasSubstr("p1[\"1#46; #96;a#34;#93;#45;#45;#62;b#35;#60;漢 z9AZ<br/>"));
    EXPECT_THAT(toMermaid(graphOf({plugin("/:@[`{~")})), HasSubstr("\"#47;#58;#64;#91;#96;#123;#126;<br/>"));
}

}  // namespace
}  // namespace nGraph
