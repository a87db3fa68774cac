#pragma once

#include <functional>
#include <string>

#include "quarks/library.h"

namespace support {

/// The plug-in of tests/plugins/calling, whose entries "Begin", "Halt" and "End" call the test back while this object
/// exists. Keeps the library loaded. At most one may exist at a time.
class tCallingPlugin {
public:
    explicit tCallingPlugin(std::function<void(const std::string& entry)> onCall);
    ~tCallingPlugin();
    tCallingPlugin(const tCallingPlugin&) = delete;
    tCallingPlugin& operator=(const tCallingPlugin&) = delete;

private:
    nLibrary::tHandle library_;
};

}  // namespace support
