// The example of a plug-in with a thread of its own: it moves what is dropped into "outbox" on to "incoming".
#include "Transport.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

#include "Settings.h"

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds pauseBetweenRounds{200};

enum Result { started = 0, cannotStart = -1 };

fs::path outbox;
fs::path incoming;
std::u8string incomingText;
std::jthread worker;

fs::path utf8(const char* text) { return {reinterpret_cast<const char8_t*>(text)}; }

/// A rename moves a file whole or not at all, so that a crash neither loses nor doubles it. A file whose name begins
/// with a full stop is still being written. Whatever fails is tried again in the next round.
void deliver() {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(outbox, ignored)) {
        const fs::path target = incoming / entry.path().filename();
        const bool ready = entry.is_regular_file(ignored) && !target.filename().native().starts_with(L'.');
        if (ready && !fs::exists(target, ignored)) fs::rename(entry.path(), target, ignored);
    }
}

/// Waits where a stop request wakes it: a plain sleep would hold up the service's stop.
void work(const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        try {
            deliver();
        } catch (...) {
            // Out of memory, say. An exception that leaves a thread would end the whole service.
        }
        wake.wait_for(lock, stop, pauseBetweenRounds, [] { return false; });
    }
}

}  // namespace

// The host calls the three one after another on one thread. It survives an exception that leaves them, but knows
// nothing of its cause: catch your own, and answer with a result of your own.

int TransportInitialize() noexcept {
    try {
        const fs::path data = utf8(SettingsFolder()) / utf8(SettingsValue("DataFolder", "data"));
        outbox = data / L"outbox";
        incoming = data / L"incoming";
        incomingText = incoming.u8string();
        fs::create_directories(outbox);
        fs::create_directories(incoming);
        worker = std::jthread(work);
        return started;
    } catch (...) {
        return cannotStart;
    }
}

/// Only asks: other plug-ins are waiting for their own Stop.
void TransportStop() noexcept { worker.request_stop(); }

/// The library is unloaded when this returns, and with it the code that the thread runs: wait for it here. Not in a
/// destructor of a global object: those run while the loader is locked, when no thread can end.
void TransportCleanup() noexcept {
    if (worker.joinable()) worker.join();
}

const char* TransportFolder() noexcept { return reinterpret_cast<const char*>(incomingText.c_str()); }
