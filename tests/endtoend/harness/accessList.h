#pragma once

#include <vector>

#include "tests/endtoend/harness/system.h"

namespace endtoend {

struct tAccessEntry {
    BYTE type;
    BYTE flags;
    DWORD mask;
    std::string sid;

    bool operator==(const tAccessEntry&) const = default;
};

/// The expected list of the product's process: one entry, which lets everyone (S-1-1-0) query it.
inline const std::vector<tAccessEntry> everyoneMayQuery{
    {.type = ACCESS_ALLOWED_ACE_TYPE, .flags = 0, .mask = 0x400, .sid = "S-1-1-0"}};

/// Returns the discretionary access list of a kernel object.
[[nodiscard]] std::vector<tAccessEntry> accessList(HANDLE object);

}  // namespace endtoend
