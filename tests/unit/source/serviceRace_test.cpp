// The program's real entry and service control, with threads in place of the service manager and the console. Native
// tools, above all ThreadSanitizer, can check the threads.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "tests/support/framework.h"
#include "tests/support/serviceManager.h"
#include "tests/support/serviceWorld.h"

namespace {

class serviceControlRace : public testing::Test {
protected:
    serviceControlRace() { world.deployment.entry = support::tScriptedFramework::instantiate; }
    void TearDown() override { EXPECT_EQ(manager.failedSignals, 0) << "the event was closed before its last use"; }

    /// The environment variable RACE_ROUNDS makes the tests run longer.
    static unsigned rounds() {
        const char* const text = std::getenv("RACE_ROUNDS");
        return static_cast<unsigned>(std::max(text == nullptr ? 0 : std::atoi(text), 20));
    }

    void printFigures(const char* what) const {
        std::cout << "FIGURE race, " << what << ": lives: " << rounds() << '\n'
                  << "FIGURE race, " << what << ": controls or events: " << manager.sent << '\n';
    }

    support::tScriptedFramework framework;
    support::tServiceWorld world;
    support::tServiceManager manager;
};

TEST_F(serviceControlRace, NoRequestIsReportedOnceTheServiceMainReportsTheStop) {
    for (unsigned round = 0; round < rounds(); ++round) ASSERT_EQ(manager.hammeredService(), "24rp1");
    printFigures("a service that waits");
}

TEST_F(serviceControlRace, AServiceThatStopsByItselfReportsARequestBeforeItsStopOrNotAtAll) {
    std::filesystem::remove_all(world.plugins);
    for (unsigned round = 0; round < rounds(); ++round) {
        const std::string life = manager.hammeredService();
        ASSERT_TRUE(life == "24rp1" || life == "24p1") << life;
    }
    printFigures("a service that stops by itself");
}

TEST_F(serviceControlRace, ASingleRequestIsNeverLost) {
    for (unsigned round = 0; round < rounds(); ++round) {
        ASSERT_EQ(manager.serviceStoppedOnce(round % 20 * 20'000), "24rp1") << round;
    }
    printFigures("a single request");
}

TEST_F(serviceControlRace, ConsoleEventsAlwaysEndAForegroundRun) {
    for (unsigned round = 0; round < rounds(); ++round) {
        manager.hammeredForeground(round * 7 % 20 * 50'000);
        ASSERT_EQ(gService, nullptr);
    }
    printFigures("a foreground run");
}

}  // namespace
