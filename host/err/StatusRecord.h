#pragma once

#include <cstdint>

#include "err/ErrorConstants.h"
#include "err/JsonReport.h"

namespace zuerr {

/// A status code and the JSON report that explains it. Low-level operations take one by reference, do nothing if it
/// already contains an error, and fill it when they fail: the first error wins.
///
/// Owns its report buffer and frees it on destruction. Thread: not thread-safe; usually a local of the caller.
struct StatusRecord {
    StatusRecord() = default;
    ~StatusRecord();
    StatusRecord(const StatusRecord&) = delete;
    StatusRecord& operator=(const StatusRecord&) = delete;

    /// The buffer manager: makes the buffer at least `capacity` bytes large and copies its text, or frees it for 0.
    /// Returns true only if the buffer is then that large, and false, with the old text in place, if it cannot be.
    using ReallocJson = bool (*)(StatusRecord& record, std::uint32_t capacity) noexcept;

    static bool reallocJsonDefault(StatusRecord& record, std::uint32_t capacity) noexcept;

    std::int32_t code = 0;
    std::uint32_t capacity = 0;  ///< bytes of `json`, 0 if there is none
    ReallocJson reallocJson = reallocJsonDefault;
    char* json = nullptr;  ///< a JSON object as text, "{}" when empty; laid out as err/JsonReport.h says

    [[nodiscard]] bool failed() const noexcept { return code < 0; }
};

/// Sets the code to 0 and frees the buffer.
void Clear(StatusRecord& record) noexcept;

/// Takes the code if it outranks the present one: anything outranks success, and an error outranks a warning. A code
/// that is taken resets the report to "{}". Returns false if nothing changed.
bool SetCode(StatusRecord& record, std::int32_t code) noexcept;

/// Takes the source's code by SetCode's rule and, if it is taken, its report. Between records with the same buffer
/// manager the buffer moves (the source is left without one); otherwise the text is copied. Returns false if the code
/// was refused.
bool Copy(StatusRecord& destination, StatusRecord& source) noexcept;

/// Returns a chain that writes members at the end of the record's top-level object and grows its buffer as needed. A
/// member for which there is no memory is left out together with all that follow; the code is never touched.
JsonChain Append(StatusRecord& record) noexcept;

/// Sets the code, which replaces the report's own, and writes error_constant, file, line and component, in this order.
/// Returns the chain for further members. Does nothing, nor does the chain, if the record already contains an error.
JsonChain RaiseInto(StatusRecord& record, std::int32_t code, const RaiseReport& report) noexcept;

}  // namespace zuerr
