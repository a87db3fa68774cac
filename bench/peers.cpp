#include "bench/peers.h"

#include <algorithm>

namespace nBench {
namespace {

std::vector<tIniPeer>& iniPeers() {
    static std::vector<tIniPeer> peers;
    return peers;
}

}  // namespace

const tIniPeer* findIniPeer(const std::string& name) {
    const auto found =
        std::find_if(iniPeers().begin(), iniPeers().end(), [&name](const tIniPeer& peer) { return peer.name == name; });
    return found == iniPeers().end() ? nullptr : &*found;
}

tIniPeerRegistration::tIniPeerRegistration(const tIniPeer& peer) { iniPeers().push_back(peer); }

}  // namespace nBench
