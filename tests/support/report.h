#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "err/JsonReport.h"

/// Helpers for tests of JSON reports. The texts are checked by a JSON library that is independent of the product.
namespace report {

/// Returns the text as a JSON document that keeps the order of its members. Fails the test if it is not JSON.
inline nlohmann::ordered_json parsed(const char* text) {
    auto document = nlohmann::ordered_json::parse(text, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << "not JSON: " << text;
    return document;
}

/// Checks the layout of a report buffer: text, terminator, zero fill, sentinel in the last byte.
inline testing::AssertionResult wellLaidOut(const char* buffer, std::size_t size) {
    if (buffer[size - 1] != zuerr::jsonSentinel) return testing::AssertionFailure() << "no sentinel";
    const std::size_t length = strnlen(buffer, size);
    for (std::size_t i = length; i + 1 < size; ++i) {
        if (buffer[i] != 0) return testing::AssertionFailure() << "byte " << i << " after the text is not zero";
    }
    return length + 1 < size ? testing::AssertionSuccess() : testing::AssertionFailure() << "no terminator";
}

/// A buffer of an exact size on the heap, so that a sanitizer notices an access beyond it.
class tBuffer {
public:
    tBuffer(std::size_t size, const char* text) : bytes_(size, '#') {
        EXPECT_TRUE(zuerr::CopyText(bytes_.data(), static_cast<std::uint32_t>(size), text));
    }

    /// A buffer with space for exactly `room` more bytes.
    static tBuffer withRoom(std::size_t room, const char* text) { return {std::strlen(text) + 2 + room, text}; }

    [[nodiscard]] char* text() noexcept { return bytes_.data(); }
    [[nodiscard]] char* end() noexcept { return zuerr::FindEnd(text()); }
    [[nodiscard]] const std::vector<char>& bytes() const noexcept { return bytes_; }
    [[nodiscard]] testing::AssertionResult wellLaidOut() const {
        return report::wellLaidOut(bytes_.data(), bytes_.size());
    }

private:
    std::vector<char> bytes_;
};

}  // namespace report
