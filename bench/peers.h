#pragma once

#include <string>
#include <utility>
#include <vector>

/// INI parsers by other authors. A parser whose library is not installed is not in the list.
namespace nBench {

using tKeyValues = std::vector<std::pair<std::string, std::string>>;

struct tIniPeer {
    std::string name;
    void (*parse)(const std::string& text);  ///< what is timed; throws if the peer rejects the text
    tKeyValues (*read)(
        const std::string& text);  ///< parses too, and returns the keys of the section "Service", unsorted
};

/// Returns null if that peer is not in the list.
const tIniPeer* findIniPeer(const std::string& name);

/// Adds a peer to the list on construction. Each peer's file defines one object.
struct tIniPeerRegistration {
    explicit tIniPeerRegistration(const tIniPeer& peer);
};

}  // namespace nBench
