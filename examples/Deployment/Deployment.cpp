// Example of a plug-in whose work must survive an interruption. The folder that contains a file tells how far it is:
//
//   incoming   delivered, complete and under its own name
//   working    claimed: no longer changed by anyone else; a file found here at a start was not finished
//   deployed   the copy that the machine is to use
//   applied    done: moving the file here is the record of it, so that it is not applied again
//
// Each step is a rename, which happens completely or not at all. Only the copy to `deployed` takes time; it has a name
// of its own until it is complete, and an incomplete one is overwritten.
#include "Deployment.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>
#include <vector>

#include "Settings.h"
#include "Transport.h"

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds pauseBetweenRounds{200};
constexpr std::size_t pieceSize = 65536;

enum Result { started = 0, cannotStart = -1 };

fs::path incoming;
fs::path working;
fs::path deployed;
fs::path applied;
std::jthread worker;

fs::path utf8(const char* text) { return {reinterpret_cast<const char8_t*>(text)}; }

/// Returns false if it failed or was interrupted; the content of `to` is then incomplete.
bool copyInPieces(const fs::path& from, const fs::path& to, const std::stop_token& stop) {
    std::ifstream source(from, std::ios::binary);
    std::ofstream target(to, std::ios::binary | std::ios::trunc);
    std::vector<char> piece(pieceSize);
    while (source && target && !stop.stop_requested()) {
        source.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        target.write(piece.data(), source.gcount());
    }
    target.close();
    return source.eof() && target;
}

/// Moves the files from `incoming` to `working`, except those still being written (the name begins with a full stop, or
/// the file cannot be moved yet) and a new version of a file that is still in `working`.
void claim() {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(incoming, ignored)) {
        const fs::path claimed = working / entry.path().filename();
        const bool ready = entry.is_regular_file(ignored) && !claimed.filename().native().starts_with(L'.');
        if (ready && !fs::exists(claimed, ignored)) fs::rename(entry.path(), claimed, ignored);
    }
}

/// If the service dies between the two renames, the file is copied again at the next start, with the same result.
void apply(const fs::path& file, const std::stop_token& stop) {
    const fs::path name = file.filename();
    fs::path copy = deployed / L".";
    copy += name;
    if (!copyInPieces(file, copy, stop)) return;
    std::error_code failure;
    fs::rename(copy, deployed / name, failure);
    if (!failure) fs::rename(file, applied / name, failure);
}

void work(const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        try {
            claim();
            for (const fs::directory_entry& entry : fs::directory_iterator(working)) {
                if (!stop.stop_requested()) apply(entry.path(), stop);
            }
        } catch (...) {
            // For example, a folder is unavailable or memory has run out: the next round tries again.
        }
        wake.wait_for(lock, stop, pauseBetweenRounds, [] { return false; });
    }
}

}  // namespace

int DeploymentInitialize() noexcept {
    try {
        incoming = utf8(TransportFolder());
        working = incoming.parent_path() / L"working";
        applied = incoming.parent_path() / L"applied";
        deployed = utf8(SettingsFolder()) / utf8(SettingsValue("DeployTo", "data\\deployed"));
        for (const fs::path& folder : {working, applied, deployed}) fs::create_directories(folder);
        worker = std::jthread(work);
        return started;
    } catch (...) {
        return cannotStart;
    }
}

void DeploymentStop() noexcept { worker.request_stop(); }

void DeploymentCleanup() noexcept {
    if (worker.joinable()) worker.join();
}
