#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/runResults.h"
#include "tool/run/render.h"

namespace {

using nRun::toJunit;
using testing::HasSubstr;

TEST(nRunJunit, IsASuiteForEachLifeWithACaseForEachPlugIn) {
    EXPECT_EQ(toJunit(support::sampleResult()),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="ziptra run">
  <testsuite name="life 1" tests="2" failures="1" errors="0" skipped="0" time="0.040">
    <testcase classname="plugins/Settings.ini" name="Settings" time="0.007">
      <failure type="leaked" message="left behind after Cleanup: 1 thread; the service would keep that until it ends"/>
    </testcase>
    <testcase classname="plugins/Transport.ini" name="Transport" time="0.033"/>
  </testsuite>
  <testsuite name="life 2" tests="2" failures="1" errors="0" skipped="0" time="0.023">
    <testcase classname="plugins/Settings.ini" name="Settings" time="0.007"/>
    <testcase classname="plugins/Transport.ini" name="Transport" time="0.016">
      <failure type="hung" message="TransportInitialize returned the warning 3; no return within 2000 ms in TransportStop, where the window &quot;Error&quot; is open; this would keep the service from stopping"/>
    </testcase>
  </testsuite>
</testsuites>
)");
}

TEST(nRunJunit, ShowsSecondsWithTheirThousandths) {
    nRun::tResult result = support::resultOf("A");
    ASSERT_FALSE(result.lives.at(0).at(0).calls.empty());
    result.lives[0][0].calls[0].timeMs = 3'661'005;
    EXPECT_THAT(toJunit(result), HasSubstr("name=\"A\" time=\"3661.005\""));
}

TEST(nRunJunit, ShowsWhatWasSaidAsOutputOfTheCase) {
    const std::string text = toJunit(support::talkingResult("<no>]]>"));
    EXPECT_THAT(text, HasSubstr(R"(
      <failure type="failed" message="AInitialize returned -1; the service would run without it"/>
      <system-err>AInitialize said: &quot;&lt;no&gt;]]&gt;&quot;
AInitialize said: &quot;&lt;no&gt;]]&gt;&quot;
</system-err>
    </testcase>
)"));
    EXPECT_THAT(text, HasSubstr(R"(time="0.003">
      <system-err>a thread said after AInitialize was called: &quot;)"));
}

TEST(nRunJunit, ReplacesWhatXmlCannotContain) {
    EXPECT_THAT(toJunit(support::resultOf("<a>&\"\x01\xEF\xBF\xBE\xEF\xBF\xBF\xFF\n")),
                HasSubstr("name=\"&lt;a&gt;&amp;&quot;\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""));
}

}  // namespace
