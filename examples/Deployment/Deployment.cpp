// Example of a plug-in whose work must survive an interruption. The folder that contains a file tells how far it is:
//
//   incoming   delivered, complete and under its own name
//   working    claimed: no longer changed by anyone else; a file found here at a start was not finished
//   deployed   the copy that the machine is to use
//   applied    done: moving the file here is the record of it, so that it is not applied again
//
// Each step is a rename, which happens completely or not at all. Only the copy to `deployed` takes time; it has a name
// of its own until it is complete, and an incomplete one is overwritten.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <vector>
#include <ziptra/plugin.hpp>

#include "Settings.h"
#include "Transport.h"

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds pauseBetweenRounds{200};
constexpr std::size_t pieceSize = 65536;

fs::path utf8(const char* text) { return {reinterpret_cast<const char8_t*>(text)}; }

/// Returns false if it failed or was interrupted; the content of `to` is then incomplete.
bool copyInPieces(const fs::path& from, const fs::path& to, const ziptra::StopRequest& stop) {
    std::ifstream source(from, std::ios::binary);
    std::ofstream target(to, std::ios::binary | std::ios::trunc);
    std::vector<char> piece(pieceSize);
    while (source && target && !stop.requested()) {
        source.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        target.write(piece.data(), source.gcount());
    }
    target.close();
    return source.eof() && target;
}

class Deployment {
public:
    Deployment() {
        for (const fs::path& folder : {working_, applied_, deployed_}) fs::create_directories(folder);
        worker_.start([this](const ziptra::StopRequest& stop) { work(stop); });
    }

private:
    void work(const ziptra::StopRequest& stop) const {
        do {
            try {
                claim();
                for (const fs::directory_entry& entry : fs::directory_iterator(working_)) {
                    if (!stop.requested()) apply(entry.path(), stop);
                }
            } catch (...) {
                // For example, a folder is unavailable or memory has run out: the next round tries again.
            }
        } while (!stop.wait(pauseBetweenRounds));
    }

    /// Moves the files from `incoming` to `working`, except those still being written (the name begins with a full
    /// stop, or the file cannot be moved yet) and a new version of a file that is still in `working`.
    void claim() const {
        std::error_code ignored;
        for (const fs::directory_entry& entry : fs::directory_iterator(incoming_, ignored)) {
            const fs::path claimed = working_ / entry.path().filename();
            const bool ready = entry.is_regular_file(ignored) && !claimed.filename().native().starts_with(L'.');
            if (ready && !fs::exists(claimed, ignored)) fs::rename(entry.path(), claimed, ignored);
        }
    }

    /// If the service dies between the two renames, the file is copied again at the next start, with the same result.
    void apply(const fs::path& file, const ziptra::StopRequest& stop) const {
        const fs::path name = file.filename();
        fs::path copy = deployed_ / L".";
        copy += name;
        if (!copyInPieces(file, copy, stop)) return;
        std::error_code failure;
        fs::rename(copy, deployed_ / name, failure);
        if (!failure) fs::rename(file, applied_ / name, failure);
    }

    const fs::path incoming_ = utf8(TransportFolder());
    const fs::path working_ = incoming_.parent_path() / L"working";
    const fs::path applied_ = incoming_.parent_path() / L"applied";
    const fs::path deployed_ = utf8(SettingsFolder()) / utf8(SettingsValue("DeployTo", "data\\deployed"));
    ziptra::Worker worker_;  // the last member: its thread uses the others
};

}  // namespace

ZIPTRA_PLUGIN(Deployment)
