#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "err/Exception.h"

/// Shared by the tests of exceptions.
namespace support {

/// Runs the action while an exception unwinds the stack, and expects that this exception arrives.
template <class Action>
void whileUnwinding(Action action) {
    std::string arrived;
    try {
        const std::unique_ptr<Action, void (*)(Action*)> guard(&action, [](Action* call) { (*call)(); });
        throw std::runtime_error("propagating");
    } catch (const std::runtime_error& error) {
        arrived = error.what();
    }
    EXPECT_EQ(arrived, "propagating");
}

/// Expects that the product still detects correctly whether an exception is propagating.
inline void expectPropagationToBeTold() {
    EXPECT_FALSE(zuerr::ExceptionIsPropagating());
    whileUnwinding([] { EXPECT_TRUE(zuerr::ExceptionIsPropagating()); });
}

/// Returns what CurrentExceptionCode returns in a catch-all handler around the action; 0 if nothing is thrown.
template <class Action>
std::int32_t caughtCode(Action action) {
    try {
        action();
    } catch (...) {
        return zuerr::CurrentExceptionCode();
    }
    return 0;
}

/// Returns code and report of the program's exception that the action throws, "-52008 {...}", or "nothing" if it throws
/// none.
template <class Action>
std::string caughtReport(Action action) {
    try {
        action();
    } catch (const zuerr::Exception& exception) {
        return std::to_string(exception.record.code) + " " + exception.what();
    }
    return "nothing";
}

}  // namespace support
