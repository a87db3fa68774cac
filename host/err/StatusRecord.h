#pragma once

#include <cstdint>

#include "err/ErrorConstants.h"
#include "err/JsonReport.h"

namespace zuerr {

/// A status code and the JSON report that explains it. Low-level operations take one by reference, do nothing if it
/// already contains an error, and fill it when they fail: the first error wins.
///
/// Owns its report buffer and frees it on destruction. Thread: not thread-safe; usually a local variable of the caller.
struct StatusRecord {
    StatusRecord() = default;
    ~StatusRecord();
    StatusRecord(const StatusRecord&) = delete;
    StatusRecord& operator=(const StatusRecord&) = delete;

    /// The buffer manager: grows the buffer to at least `capacity` bytes and preserves its text; a capacity of 0 frees
    /// it. Returns true only if the buffer is then that large; otherwise returns false, with the old text unchanged.
    using ReallocJson = bool (*)(StatusRecord& record, std::uint32_t capacity) noexcept;

    static bool reallocJsonDefault(StatusRecord& record, std::uint32_t capacity) noexcept;

    std::int32_t code = 0;
    std::uint32_t capacity = 0;  ///< size of `json` in bytes, 0 if it is null
    ReallocJson reallocJson = reallocJsonDefault;
    char* json = nullptr;  ///< a JSON object as text, "{}" when empty; see err/JsonReport.h for the layout

    [[nodiscard]] bool failed() const noexcept { return code < 0; }
};

/// Sets the code to 0 and frees the buffer.
void Clear(StatusRecord& record) noexcept;

/// Stores the code if it outranks the current one: anything outranks success, and an error outranks a warning. Storing
/// a code resets the report to "{}". Returns false if nothing changed.
bool SetCode(StatusRecord& record, std::int32_t code) noexcept;

/// Stores the source's code as SetCode does and, if it was stored, the source's report. Between records with the same
/// buffer manager the buffer is moved (the source is left without one); otherwise the text is copied. Returns false if
/// the code was not stored.
bool Copy(StatusRecord& destination, StatusRecord& source) noexcept;

/// Returns a chain that writes members at the end of the record's top-level object and grows its buffer as needed. If
/// memory runs out, the current member and all later ones are skipped; the code never changes.
JsonChain Append(StatusRecord& record) noexcept;

/// Sets the code, which overrides the report's own, and writes error_constant, file, line and component, in this order.
/// Returns a chain for further members. If the record already contains an error, neither this call nor the chain does
/// anything.
JsonChain RaiseInto(StatusRecord& record, std::int32_t code, const RaiseReport& report) noexcept;

}  // namespace zuerr
