#include "tool/status/statusHtml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/statusReports.h"
#include "tests/support/text.h"

namespace {

using namespace nStatus;
using support::occurrences;
using support::plugin;
using support::report;
using testing::HasSubstr;
using testing::Not;

TEST(nStatusHtml, IsOneDocumentThatMayLoadNothing) {
    const std::string html = toHtml(report({plugin("A")}));
    EXPECT_THAT(html, testing::StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(html, HasSubstr("default-src 'none'; style-src 'unsafe-inline'"));
    for (const char* const loading : {"http:", "https:", "src=", "url(", "@import", "<script"}) {
        EXPECT_THAT(html, Not(HasSubstr(loading)));
    }
}

TEST(nStatusHtml, SaysInItsTitleWhetherAllIsWell) {
    const auto title = [](const tReport& r, const std::string& text) {
        EXPECT_THAT(toHtml(r), HasSubstr("<title>" + text + " \xE2\x80\x93 Ziptra status</title>"));
        EXPECT_THAT(toHtml(r), HasSubstr("\">" + text + "</p>"));
    };
    title(report(), "No plug-ins");
    title(report({plugin("A")}), "The plug-in is all right");
    title(report({plugin("A"), plugin("B")}), "All 2 plug-ins are all right");
    title(report({plugin("A", 0, -1)}), "1 of 1 plug-in failed");
    title(report({plugin("A", 0, -1), plugin("B")}, {"m"}), "1 of 2 plug-ins failed");
    title(report({plugin("A")}, {"m"}), "1 message, but no plug-in failed");
    title(report({}, {"m", "n"}), "2 messages, but no plug-in failed");
}

TEST(nStatusHtml, MakesCodesStandOutThatAreNotZero) {
    const std::string html = toHtml(report({plugin("A", 0, -7), plugin("B", 0, 3), plugin("C")}));
    EXPECT_THAT(html, HasSubstr("<code class=\"code bad\">-7</code>"));
    EXPECT_THAT(html, HasSubstr("<code class=\"code warn\">3</code>"));
    EXPECT_THAT(html, HasSubstr("<code class=\"code soft\">0</code>"));
}

TEST(nStatusHtml, ShowsTheMachine) {
    tReport machine = report({plugin("A", 20'000)});
    EXPECT_THAT(toHtml(machine), HasSubstr("<dt>Deployment</dt><dd>allowed</dd>"));
    EXPECT_THAT(toHtml(machine), HasSubstr("<dt>Preparation</dt><dd>1250 ms</dd>"));
    EXPECT_THAT(toHtml(machine), HasSubstr("<dt>Longest call</dt><dd>20.0 s</dd>"));
    machine.allowedMask = 0xFFFFFFFD;
    machine.initTimeMs.reset();
    EXPECT_THAT(toHtml(machine), HasSubstr("not allowed"));
    EXPECT_THAT(toHtml(machine), HasSubstr("<code>0xfffffffd</code>"));
    EXPECT_THAT(toHtml(machine), Not(HasSubstr("Preparation")));
}

TEST(nStatusHtml, ShowsFailuresWithCauseAndRemedyBeforeTheStartOrder) {
    const std::string html = toHtml(report({plugin("Fine"), plugin("Bad", 0, -52002)}, {"message"}));
    const std::size_t message = html.find("<bdi>message</bdi>");
    const std::size_t cause = html.find("The machine allows none of the features that the plug-in requires.");
    const std::size_t remedy = html.find("class=\"remedy\">Allow remote deployment");
    EXPECT_LT(message, cause);
    EXPECT_LT(cause, remedy);
    EXPECT_LT(remedy, html.find("Start order"));
    EXPECT_LT(html.find("Start order"), html.find("<bdi>Fine</bdi>"));
}

TEST(nStatusHtml, ShowsNoFindingsIfThereAreNone) {
    EXPECT_THAT(toHtml(report({plugin("A")})), Not(HasSubstr("needs attention")));
    EXPECT_THAT(toHtml(report()), Not(HasSubstr("Start order")));
}

TEST(nStatusHtml, ShowsAlternativeCauses) {
    EXPECT_THAT(toHtml(report({plugin("A", 0, -52005)})), HasSubstr("<p>Or the plug-in's library lacks"));
}

TEST(nStatusHtml, LeadsFromAFailureToItsCause) {
    const std::string html = toHtml(report({plugin("A", 0, -1), plugin("B", 0, -52006, {"A"})}));
    EXPECT_THAT(html, HasSubstr("<a href=\"#p1\">Look at A first.</a>"));
    EXPECT_THAT(html, HasSubstr("<li id=\"p1\" class=\"failed\">"));
    EXPECT_THAT(html, HasSubstr("<a href=\"#p1\" class=\"bad\"><bdi>A</bdi></a>"));
}

TEST(nStatusHtml, ShowsWarningsMildly) {
    const std::string html = toHtml(report({plugin("A", 0, 5)}));
    EXPECT_THAT(html, HasSubstr("<li class=\"mild\">"));
    EXPECT_THAT(html, HasSubstr("A warning of the plug-in's own."));
    EXPECT_THAT(html, HasSubstr("<code class=\"code warn\">5</code>"));
    EXPECT_THAT(html, HasSubstr("class=\"verdict good\""));
}

TEST(nStatusHtml, DrawsABarForEachCall) {
    tPlugin alpha = plugin("Alpha", 1000);
    alpha.calls.push_back({"AlphaStop", tPhase::stop, 333, 0});
    alpha.calls.push_back({"AlphaCleanup", tPhase::cleanup, 0, 1});
    const std::string html = toHtml(report({alpha}));
    EXPECT_THAT(html,
                HasSubstr("<i class=\"initialize\" style=\"width:100.0%\"></i></span><span class=\"time\">1000 ms"));
    EXPECT_THAT(html, HasSubstr("<i class=\"stop\" style=\"width:33.3%\"></i></span><span class=\"time\">333 ms"));
    EXPECT_THAT(html, HasSubstr("<span class=\"track\"></span><span class=\"time\">0 ms"));
}

TEST(nStatusHtml, SaysThatAPluginStartedInNoTime) {
    EXPECT_THAT(toHtml(report({plugin("A")})), HasSubstr("started in no time"));
}

TEST(nStatusHtml, ExplainsTheBarsOfThePhasesThatAreShown) {
    EXPECT_THAT(toHtml(report({plugin("A", 5)})), Not(HasSubstr("</b>Stop")));
    tPlugin stopped = plugin("A", 5);
    stopped.calls.push_back({"AStop", tPhase::stop, 1, 0});
    EXPECT_THAT(toHtml(report({stopped})), HasSubstr("<b class=\"stop\"></b>Stop"));
}

TEST(nStatusHtml, DrawsDependencies) {
    const std::string html = toHtml(report({plugin("A"), plugin("X"), plugin("B", 0, 0, {"A"})}));
    // One lane of 9 pixels and 12 for the dot; the lane is in the middle of its column.
    EXPECT_THAT(html, HasSubstr("style=\"--lanes:21px\""));
    EXPECT_THAT(html, HasSubstr("<path class=\"l0\" d=\"M15 50C4 50 4 50 4 100\"/>"));
    EXPECT_THAT(html, HasSubstr("<path class=\"l0\" d=\"M4 0V100\"/>"));
    EXPECT_THAT(html, HasSubstr("<path class=\"l0\" d=\"M4 0C4 50 4 50 15 50\"/>"));
    EXPECT_THAT(html, HasSubstr("needs <a href=\"#p1\"><bdi>A</bdi></a></div>"));
    EXPECT_THAT(toHtml(report({plugin("A", 0, -1), plugin("B", 0, -1, {"A"})})), HasSubstr("class=\"l0 dead\""));
}

TEST(nStatusHtml, ShowsMissingDependencies) {
    EXPECT_THAT(toHtml(report({plugin("B", 0, -52006, {"A"})})),
                HasSubstr("<span class=\"bad\"><bdi>A</bdi> (missing)</span>"));
}

TEST(nStatusHtml, ShowsAtMostThirtyDependenciesByName) {
    std::vector<std::string> names(32, "A");
    EXPECT_THAT(toHtml(report({plugin("B", 0, -1, names)})), HasSubstr(" and 2 more</div>"));
    names.resize(30);
    EXPECT_THAT(toHtml(report({plugin("B", 0, -1, names)})), Not(HasSubstr("more</div>")));
}

TEST(nStatusHtml, SaysWhatItDoesNotDraw) {
    std::vector<tPlugin> plugins;
    std::vector<std::string> names;
    for (char name = 'a'; name < 'a' + 9; ++name) {
        plugins.push_back(plugin(std::string(1, name)));
        names.emplace_back(1, name);
    }
    plugins.push_back(plugin("z", 0, 0, names));
    EXPECT_THAT(toHtml(report(plugins)), HasSubstr("Not all dependencies are drawn"));
    plugins.back().dependencies.pop_back();
    EXPECT_THAT(toHtml(report(plugins)), Not(HasSubstr("Not all dependencies are drawn")));
}

TEST(nStatusHtml, SaysThatTheReportIsAmbiguous) {
    tReport ambiguous = report({plugin("A")});
    EXPECT_THAT(toHtml(ambiguous), Not(HasSubstr("belong to none")));
    ambiguous.ambiguous = true;
    EXPECT_THAT(toHtml(ambiguous), HasSubstr("belong to none"));
}

TEST(nStatusHtml, EscapesEverythingFromTheFile) {
    const std::string hostile = "<script>&\"'\x01</style>";
    const tPlugin plugin{hostile, {hostile}, hostile, 1, {{hostile, tPhase::initialize, 1, -1}}, false};
    tReport all = report({plugin}, {hostile});
    all.updated = hostile;
    const std::string html = toHtml(all);
    EXPECT_THAT(html, Not(HasSubstr("<script")));
    EXPECT_THAT(html, Not(HasSubstr("\x01")));
    EXPECT_EQ(occurrences(html, "</style>"), 1);
    EXPECT_THAT(html, HasSubstr("&lt;script&gt;&amp;&quot;'\xEF\xBF\xBD&lt;/style&gt;"));
}

TEST(nStatusHtml, NamesAPluginWithoutAName) { EXPECT_THAT(toHtml(report({plugin("")})), HasSubstr("(no name)")); }

}  // namespace
