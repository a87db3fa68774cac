// SimpleIni with narrow text and names that ignore case, as ours.
#define SI_NO_CONVERSION  // it uses the bytes as they are, as ours does; its conversions cost more
#include <SimpleIni.h>

#include <stdexcept>

#include "bench/peers.h"

namespace {

void demandSuccess(SI_Error result) {
    if (result < 0) throw std::runtime_error("SimpleIni rejects the text");
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
