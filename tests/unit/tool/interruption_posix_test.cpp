#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "tool/interruption.h"

namespace {

TEST(nInterruptionDeathTest, TakesEffectAfterTheAction) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const auto interrupted = [signal](bool ended) {
            nInterruption::withhold([=] {
                raise(signal);
                if (ended) std::_Exit(3);
            });
            std::_Exit(4);
        };
        EXPECT_EXIT(interrupted(true), testing::ExitedWithCode(3), "");
        EXPECT_EXIT(interrupted(false), testing::KilledBySignal(signal), "");
    }
}

TEST(nInterruptionDeathTest, EndsTheProcessAgainAfterAnActionThatThrows) {
    EXPECT_THROW(nInterruption::withhold([] { throw std::runtime_error(""); }), std::runtime_error);
    EXPECT_EXIT(raise(SIGINT), testing::KilledBySignal(SIGINT), "");
}

}  // namespace
