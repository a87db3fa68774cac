// SimpleIni as a document of narrow text whose names ignore case, as ours.
#define SI_NO_CONVERSION  // the bytes as they are, as ours takes them; its other ways cost more
#include <SimpleIni.h>

#include <stdexcept>

#include "bench/peers.h"

namespace {

void demandSuccess(SI_Error result) {
    if (result < 0) throw std::runtime_error("SimpleIni refuses the text");
}

const nBench::tIniPeerRegistration simpleIni({
    "simpleini",
    [](const std::string& text) {
        CSimpleIniA document;
        demandSuccess(document.LoadData(text));
    },
    [](const std::string& text) {
        CSimpleIniA document;
        demandSuccess(document.LoadData(text));
        nBench::tKeyValues keys;
        for (const auto& [entry, value] : *document.GetSection("Service")) keys.emplace_back(entry.pItem, value);
        return keys;
    },
});

}  // namespace
