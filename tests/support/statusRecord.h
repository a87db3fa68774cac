#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "err/StatusRecord.h"
#include "tests/support/report.h"

namespace report {

inline testing::AssertionResult wellLaidOut(const zuerr::StatusRecord& record) {
    return wellLaidOut(record.json, record.capacity);
}

}  // namespace report

/// Buffer managers for status records, and the capacities that were requested from them in this test.
class tStatusRecordTest : public testing::Test {
protected:
    tStatusRecordTest() { requests.clear(); }

    static bool remember(zuerr::StatusRecord& record, std::uint32_t capacity) noexcept {
        requests.push_back(capacity);
        return zuerr::StatusRecord::reallocJsonDefault(record, capacity);
    }

    /// Frees, but allocates nothing.
    static bool refuse(zuerr::StatusRecord& record, std::uint32_t capacity) noexcept {
        requests.push_back(capacity);
        return capacity <= record.capacity && zuerr::StatusRecord::reallocJsonDefault(record, capacity);
    }

    /// Allocates exactly what is requested.
    static bool exact(zuerr::StatusRecord& record, std::uint32_t capacity) noexcept {
        if (capacity == 0) return zuerr::StatusRecord::reallocJsonDefault(record, 0);
        if (capacity <= record.capacity) return true;
        char* const buffer = static_cast<char*>(std::malloc(capacity));
        zuerr::CopyText(buffer, capacity, record.json == nullptr ? "{}" : record.json);
        std::free(record.json);
        record.json = buffer;
        record.capacity = capacity;
        return true;
    }

    inline static std::vector<std::uint32_t> requests;
};
