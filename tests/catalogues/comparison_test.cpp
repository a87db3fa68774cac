#include "tests/catalogues/comparison.h"

#include <gmock/gmock.h>

#include <functional>

#include "tests/catalogues/generator.h"

namespace catalogues {
namespace {

/// A prediction, and a hosting that agrees with it.
struct tPair {
    tPrediction prediction{"C:\\plugins",
                           0xFFFFFFFF,
                           {"Failed to parse service description file: C:\\plugins\\x.ini"},
                           {{"a.ini", "A", {}, "C:\\a.dll", 1, std::nullopt},
                            {"b.ini", "B", {"A", "C"}, "C:\\b.dll", 3, -52006},
                            {"c.ini", "C", {"A"}, "C:\\c.dll", 1, std::nullopt}},
                           {{"missing-dependency", "error", "b.ini", std::nullopt, "B"}}};
    tHosting hosting{"",
                     {"0xffffffff",
                      {"Failed to parse service description file: C:\\plugins\\x.ini"},
                      {{"A (depends on )", "C:\\a.dll", "1", "InitFails7", -7},
                       {"B (depends on A, C)", "C:\\b.dll", "3", "Init", -52006},
                       {"C (depends on A)", "C:\\c.dll", "1", "InitOk", -52006}}},
                     ""};

    [[nodiscard]] std::vector<std::string> differences() const {
        return catalogues::differences({}, prediction, hosting);
    }
};

TEST(comparison, FindsNothingWhereBothAgree) { EXPECT_THAT(tPair().differences(), testing::IsEmpty()); }

TEST(comparison, FindsEachThingThatDiffers) {
    const std::vector<std::function<void(tPair&)>> changes{
        [](tPair& pair) { pair.prediction.allowedMask = 0xFFFFFFFD; },
        [](tPair& pair) { pair.prediction.messages.clear(); },
        [](tPair& pair) { pair.prediction.plugins.pop_back(); },
        [](tPair& pair) { std::swap(pair.prediction.plugins[0], pair.prediction.plugins[1]); },
        [](tPair& pair) { pair.prediction.plugins[1].dependencies.pop_back(); },
        [](tPair& pair) { pair.prediction.plugins[1].path += "x"; },
        [](tPair& pair) { pair.prediction.plugins[1].requiresMask = 2; },
        [](tPair& pair) { pair.prediction.plugins[1].code = -52005; },
        [](tPair& pair) { pair.prediction.plugins[0].code = -7; },
        [](tPair& pair) { pair.prediction.plugins[2].code = 0; },
        [](tPair& pair) { pair.prediction.findings.clear(); },
        [](tPair& pair) { pair.hosting.status.plugins[0].code = -52005; },
        [](tPair& pair) { pair.hosting.status.plugins[0].code = 0; },
        [](tPair& pair) { pair.hosting.status.messages.emplace_back(notFoundMessage); },
        [](tPair& pair) { pair.hosting.calls = "a InitOk\n"; },
    };
    for (const auto& change : changes) {
        tPair pair;
        change(pair);
        EXPECT_THAT(pair.differences(), testing::Not(testing::IsEmpty())) << "change " << &change - changes.data();
    }
}

TEST(comparison, FindsAPluginThatStartsAlthoughItMustFail) {
    for (const std::int32_t code : {-7, 0, 3}) {
        tPair pair;
        pair.prediction.plugins[0].mayStart = false;
        pair.hosting.status.plugins[0] = {"A (depends on )", "C:\\a.dll", "1",
                                          code < 0   ? "InitFails7"
                                          : code > 0 ? "InitWarning3"
                                                     : "InitOk",
                                          code};
        if (code < 0) {
            EXPECT_THAT(pair.differences(), testing::IsEmpty());
        } else {
            EXPECT_THAT(pair.differences(), testing::ElementsAre(testing::HasSubstr("predicted to fail")));
        }
    }
}

TEST(comparison, AcceptsAnOpenCodeOnlyIfCodeOfAPluginDecides) {
    tPair pair;
    pair.prediction.plugins[0].code = -52002;
    pair.hosting.status.plugins[0].code = -52002;
    pair.prediction.findings.push_back({"feature", "error", "a.ini", std::nullopt, "A"});
    EXPECT_THAT(pair.differences(), testing::ElementsAre(testing::HasSubstr("not predicted")));
}

TEST(generator, MakesTheSameDirectoryOfTheSameSeed) {
    const tLibraryPaths libraries{{"C:\\good.dll"}, {"C:\\bad.dll"}, {"C:\\empty.dll"}, {"good.dll"}};
    for (std::uint64_t seed = 1; seed < 50; ++seed) {
        EXPECT_EQ(describe(generate(seed, libraries)), describe(generate(seed, libraries)));
        EXPECT_NE(describe(generate(seed, libraries)), describe(generate(seed + 1, libraries)));
    }
}

}  // namespace
}  // namespace catalogues
