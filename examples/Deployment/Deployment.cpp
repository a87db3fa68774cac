// The example of a plug-in whose work must survive a stop in the middle. A file's way, the folder telling how far it
// is:
//
//   incoming   dropped here under its own name, complete
//   working    claimed: nobody changes it any more, and what is found here at a start was not finished
//   deployed   applied: the file that the machine is to have
//   applied    done: the move to this folder is the record, so that nothing is applied again
//
// A file takes each step by a rename, which happens or does not. Only the copy in between takes time; it goes to a
// name of its own and is thrown away when it is cut short.
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

/// False when it failed or was cut short; what `to` then holds is worth nothing.
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

/// Leaves alone what is still being written (its name begins with a full stop, or it cannot be moved yet) and a new
/// version of a file that is still being worked on.
void claim() {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(incoming, ignored)) {
        const fs::path claimed = working / entry.path().filename();
        const bool ready = entry.is_regular_file(ignored) && !claimed.filename().native().starts_with(L'.');
        if (ready && !fs::exists(claimed, ignored)) fs::rename(entry.path(), claimed, ignored);
    }
}

/// If the service dies between the two renames the file is copied once more at the next start, to the same effect.
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
            // A folder out of reach, no memory: the next round tries again.
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
