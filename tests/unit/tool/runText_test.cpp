#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/runResults.h"
#include "tool/run/render.h"

namespace {

using nRun::toText;
using support::livingPlugin;
using support::tLifeEvents;
using testing::HasSubstr;
using testing::StartsWith;

TEST(nRunText, ShowsFindingsThenTheLongestTimeOfEachCallThenTheVerdict) {
    EXPECT_EQ(
        toText(support::sampleResult(), false),
        R"(plugins/Settings.ini: error: Settings: left behind after Cleanup: 1 thread; the service would keep that until it ends (in 1 of 2 lives) [leaked]
plugins/Transport.ini: note: Transport: TransportInitialize returned the warning 3 (in 1 of 2 lives) [ok]
plugins/Settings.ini: note: Settings: it was not stopped and cleaned up, because the life ended in Transport (in 1 of 2 lives) [ok]
plugins/Transport.ini: error: Transport: TransportInitialize returned the warning 3; no return within 2000 ms in TransportStop, where the window "Error" is open; this would keep the service from stopping (in 1 of 2 lives) [hung]

The longest time of each call:
PLUG-IN          INITIALIZE              STOP           CLEANUP  OUTCOME
Settings               7 ms              1 ms              1 ms  leaked
Transport          3, 31 ms              1 ms              1 ms  hung

2 plug-ins, 2 lives: failed
)");
}

TEST(nRunText, CountsTheLivesInWhichTheSameHappens) {
    tLifeEvents log(1);
    for (int life = 0; life < 3; ++life) log.call(0, tLifeEvents::tPhase::initialize, life == 1 ? -8 : -7).over();
    const std::string text = toText(judge({livingPlugin("A")}, 3, log.finished().events, {}), false);
    EXPECT_THAT(text,
                HasSubstr("AInitialize returned -7; the service would run without it (in 2 of 3 lives) [failed]\n"));
    EXPECT_THAT(text,
                HasSubstr("AInitialize returned -8; the service would run without it (in 1 of 3 lives) [failed]\n"));
}

TEST(nRunText, ShowsWhatWasSaidBelowTheFindingWithoutANumberOfLives) {
    EXPECT_THAT(
        toText(support::talkingResult(), false),
        StartsWith(
            R"(plugins/A.ini: error: A: AInitialize returned -1; the service would run without it (in 2 of 3 lives) [failed]
plugins/A.ini: note: A: AInitialize said: "no file" [said]
plugins/A.ini: note: A: a thread said after AInitialize was called: "no file" [said]

)"));
}

TEST(nRunText, SaysOnlyTheTimesAndTheVerdictIfAllWentWell) {
    tLifeEvents log(1);
    EXPECT_EQ(toText(judge({livingPlugin("A")}, 1, log.calls(0).finished().events, {}), true),
              R"(PLUG-IN        INITIALIZE              STOP           CLEANUP  OUTCOME
A                    1 ms              1 ms              1 ms  ok

1 plug-in, 1 life: passed
)");
}

TEST(nRunText, HasColoursIfAskedFor) {
    const std::string text = toText(support::sampleResult(), true);
    EXPECT_THAT(text, StartsWith("\x1B[1mplugins/Settings.ini:\x1B[0m \x1B[1;31merror:\x1B[0m Settings: "));
    EXPECT_THAT(text, HasSubstr("  \x1B[1;31mhung\x1B[0m\n"));
}

TEST(nRunText, LetsNoNameControlATerminal) {
    const std::string text = toText(support::resultOf("\x1B[2J\n\xFF"), false);
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_EQ(toText(support::talkingResult("\x1B[2J"), false).find('\x1B'), std::string::npos);
    EXPECT_THAT(text, StartsWith("plugins/A.ini: error: \xEF\xBF\xBD[2J\xEF\xBF\xBD\xEF\xBF\xBD: it depends on "));
}

TEST(nRunText, AlignsColumnsAfterNamesOfAnyWidth) {
    const std::string text = toText(support::resultOf("\xE6\x8F\x92\xE4\xBB\xB6" + std::string(100, 'W')), false);
    EXPECT_THAT(text, HasSubstr("PLUG-IN" + std::string(33, ' ') + "        INITIALIZE"));
    EXPECT_THAT(text, HasSubstr("WWW\xE2\x80\xA6"));
}

}  // namespace
