#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/runResults.h"
#include "tool/run/render.h"

namespace {

using nRun::toJson;
using support::livingPlugin;
using support::tLifeEvents;
using testing::HasSubstr;

TEST(nRunJson, ShowsEachPlugInOfEachLife) {
    tLifeEvents log(1);
    log.call(0, tLifeEvents::tPhase::initialize, -7, 12).finished();
    EXPECT_EQ(toJson(judge({livingPlugin("A")}, 1, log.events, {})), R"({
  "schema": 1,
  "verdict": "failed",
  "lives": [
    {
      "plugins": [
        {
          "name": "A",
          "file": "plugins/A.ini",
          "calls": [
            {
              "entry": "AInitialize",
              "phase": "initialize",
              "timeMs": 12,
              "code": -7
            }
          ],
          "outcome": "failed",
          "detail": "AInitialize returned -7; the service would run without it",
          "said": []
        }
      ]
    }
  ]
}
)");
}

TEST(nRunJson, SaysWhetherAllPassed) {
    tLifeEvents log(1);
    const std::string text = toJson(judge({livingPlugin("A")}, 1, log.calls(0).finished().events, {}));
    EXPECT_THAT(text, HasSubstr("\"verdict\": \"passed\""));
    EXPECT_THAT(text, HasSubstr("\"detail\": \"\""));
}

TEST(nRunJson, ShowsWhatWasSaidByWhichThread) {
    const std::string text = toJson(support::talkingResult());
    EXPECT_THAT(text, HasSubstr(R"("said": [
            {
              "entry": "AInitialize",
              "thread": "other",
              "text": "no file"
            }
          ])"));
    EXPECT_THAT(text, HasSubstr("\"thread\": \"host\""));
}

TEST(nRunJson, ReplacesBytesThatAreNotUtf8) {
    EXPECT_THAT(toJson(support::resultOf("\xFF")), HasSubstr("\"name\": \"\xEF\xBF\xBD\""));
}

}  // namespace
