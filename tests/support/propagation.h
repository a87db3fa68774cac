#pragma once

#include <gtest/gtest.h>

#include <stdexcept>

#include "err/Exception.h"

namespace support {

/// Expects that the product distinguishes a propagating exception from none, whatever was thrown before.
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
