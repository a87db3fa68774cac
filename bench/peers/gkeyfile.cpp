// GKeyFile, the INI parser of GLib.
#include <glib.h>

#include <memory>
#include <stdexcept>

#include "bench/peers.h"

namespace {

using tKeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

tKeyFile load(const std::string& text) {
    tKeyFile file(g_key_file_new(), g_key_file_free);
    if (g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) == 0) {
        throw std::runtime_error("GKeyFile rejects the text");
    }
    return file;
}

nBench::tKeyValues read(const std::string& text) {
    const tKeyFile file = load(text);
    const std::unique_ptr<gchar*, decltype(&g_strfreev)> names(
        g_key_file_get_keys(file.get(), "Service", nullptr, nullptr), g_strfreev);
    nBench::tKeyValues keys;
    for (gchar** name = names.get(); *name != nullptr; ++name) {
        const std::unique_ptr<gchar, decltype(&g_free)> value(
            g_key_file_get_value(file.get(), "Service", *name, nullptr), g_free);
        keys.emplace_back(*name, value.get());
    }
    return keys;
}

const nBench::tIniPeerRegistration gkeyfile({"gkeyfile", [](const std::string& text) { load(text); }, read});

}  // namespace
