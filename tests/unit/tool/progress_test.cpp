#include "tool/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using std::chrono::milliseconds;

class tProgressTest : public testing::Test {
protected:
    /// Advances once at each of these times since the beginning, in milliseconds, and returns what is shown until then.
    static std::string shownAfter(const std::vector<int>& times, std::size_t total, bool watched = true) {
        std::ostringstream out;
        std::ostringstream error;
        tContext context{out, error, false, watched};
        milliseconds now{5000};
        tProgress progress(context, "reading", total, [&now] { return now; });
        for (const int time : times) {
            now = milliseconds(5000 + time);
            progress.advance();
        }
        EXPECT_EQ(out.str(), "");
        return error.str();
    }
};

TEST_F(tProgressTest, ShowsNothingWithinASecond) { EXPECT_EQ(shownAfter({0, 500, 999}, 9), ""); }

TEST_F(tProgressTest, ShowsOneLineAfterASecond) {
    EXPECT_EQ(shownAfter({0, 1000}, 9), "\r\x1B[Kreading: 2 of 9");
    EXPECT_EQ(shownAfter({3000}, 0), "\r\x1B[Kreading: 1") << "the total is unknown";
}

TEST_F(tProgressTest, ShowsChangesTenTimesASecond) {
    EXPECT_EQ(shownAfter({1000, 1001, 1099, 1100, 1150, 1250}, 9),
              "\r\x1B[Kreading: 1 of 9\r\x1B[Kreading: 4 of 9\r\x1B[Kreading: 6 of 9");
}

TEST_F(tProgressTest, ShowsNothingIfNobodyWatches) { EXPECT_EQ(shownAfter({3000}, 9, false), ""); }

TEST_F(tProgressTest, ErasesItsLineAtTheEnd) {
    std::ostringstream error;
    tContext context{error, error, false, true};
    milliseconds now{0};
    {
        tProgress progress(context, "reading", 0, [&now] { return now += milliseconds(600); });
        progress.advance();
        EXPECT_EQ(error.str(), "");
        progress.advance();
        progress.advance();
    }
    EXPECT_EQ(error.str(), "\r\x1B[Kreading: 2\r\x1B[Kreading: 3\r\x1B[K");
}

TEST_F(tProgressTest, ErasesNothingIfNothingWasShown) {
    std::ostringstream error;
    tContext context{error, error, false, true};
    { tProgress(context, "reading", 0).advance(); }
    EXPECT_EQ(error.str(), "");
}

}  // namespace
