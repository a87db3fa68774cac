#include "err/StatusRecord.h"

#include <gtest/gtest.h>

namespace {

TEST(StatusRecord, FreshRecordHoldsSuccessAndNoReport) {
    const zuerr::StatusRecord record;
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.capacity, 0U);
    EXPECT_EQ(record.json, nullptr);
}

}  // namespace
