#pragma once

#include <gtest/gtest.h>

#include <stdexcept>

#include "err/Exception.h"

namespace support {

/// Expects that the product still detects correctly whether an exception is propagating.
inline void expectPropagationToBeTold() {
    EXPECT_FALSE(zuerr::ExceptionIsPropagating());
    struct CleanUp {
        ~CleanUp() { EXPECT_TRUE(zuerr::ExceptionIsPropagating()); }
    };
    EXPECT_THROW(
        {
            const CleanUp cleanUp;
            throw std::runtime_error("propagating");
        },
        std::runtime_error);
}

}  // namespace support
