#pragma once

#include <string>
#include <utility>
#include <vector>

/// INI readers of other people. A reader that cannot be built here, because its library is missing, is not in the list.
namespace nBench {

using tKeyValues = std::vector<std::pair<std::string, std::string>>;

struct tIniPeer {
    std::string name;
    void (*parse)(const std::string& text);  ///< what is timed; throws when the text is refused
    tKeyValues (*read)(
        const std::string& text);         ///< the same, and what it found in the section "Service", in any order
    void (*parseFile)(const char* path);  ///< null when it is not wanted
};

/// Null when that peer is missing.
const tIniPeer* findIniPeer(const std::string& name);

/// Adds its peer to the list. Each peer's file has one.
struct tIniPeerRegistration {
    explicit tIniPeerRegistration(const tIniPeer& peer);
};

}  // namespace nBench
