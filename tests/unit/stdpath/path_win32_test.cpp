#include <gtest/gtest.h>

#include <string>

#include "stdpath/path.h"

namespace {

TEST(nStdPathPaths, ContainTheSystemsOwnUnits) {
    const std::u8string_view utf8 = u8"C:\\größe\\计划 🚀.ini";
    EXPECT_EQ(nStdPath::pathFromUtf8({utf8.begin(), utf8.end()}).native(), L"C:\\größe\\计划 🚀.ini");
}

TEST(nStdPathPaths, SurviveTheRoundTripEvenIfTheyAreNotValidUtf16) {
    for (const std::wstring name : {L"C:\\high\xD800", L"C:\\\xDC00low", L"C:\\\xDC00\xD800 crossed",
                                    L"C:\\\xD800"
                                    L"A"}) {
        EXPECT_EQ(nStdPath::pathFromUtf8(nStdPath::pathToUtf8(name)).native(), name);
    }
}

}  // namespace
