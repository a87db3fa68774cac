// inih stores nothing but calls back for each key. The callback that is timed does nothing.
#include <ini.h>

#include <stdexcept>

#include "bench/peers.h"

namespace {

int ignoreKey(void* /*keys*/, const char* /*section*/, const char* /*name*/, const char* /*value*/) { return 1; }

int keepKey(void* keys, const char* /*section*/, const char* name, const char* value) {
    static_cast<nBench::tKeyValues*>(keys)->emplace_back(name, value);
    return 1;
}

void parseWith(const std::string& text, ini_handler handler, void* user) {
    if (ini_parse_string(text.c_str(), handler, user) != 0) throw std::runtime_error("inih rejects the text");
}

const nBench::tIniPeerRegistration inih({
    "inih",
    [](const std::string& text) { parseWith(text, ignoreKey, nullptr); },
    [](const std::string& text) {
        nBench::tKeyValues keys;
        parseWith(text, keepKey, &keys);
        return keys;
    },
});

}  // namespace
