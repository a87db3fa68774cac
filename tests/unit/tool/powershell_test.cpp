#include "tool/install/powershell.h"

#include <gtest/gtest.h>

namespace {

TEST(nPowershell, DoublesEveryQuoteThatPowershellTakesForASingleOne) {
    EXPECT_EQ(nPowershell::quoted(""), "''");
    EXPECT_EQ(nPowershell::quoted("C:\\a \"$b`\" [c]"), "'C:\\a \"$b`\" [c]'");
    EXPECT_EQ(nPowershell::quoted("O'Neill"), "'O''Neill'");
    EXPECT_EQ(nPowershell::quoted("\u2018\u2019\u201A\u201B\u201C插"),
              "'\u2018\u2018\u2019\u2019\u201A\u201A\u201B\u201B\u201C插'");
}

}  // namespace
