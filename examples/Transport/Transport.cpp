// Example of a plug-in with its own thread: it moves files from "outbox" to "incoming".
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

/// A rename moves a file completely or not at all, so a crash neither loses nor duplicates it. A file whose name begins
/// with a full stop is still being written. Files that cannot be moved are tried again in the next round.
void deliver() {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(outbox, ignored)) {
        const fs::path target = incoming / entry.path().filename();
        const bool ready = entry.is_regular_file(ignored) && !target.filename().native().starts_with(L'.');
        if (ready && !fs::exists(target, ignored)) fs::rename(entry.path(), target, ignored);
    }
}

/// Waits on a condition variable that a stop request wakes: a plain sleep would delay the service's stop.
void work(const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        try {
            deliver();
        } catch (...) {
            // For example, out of memory. An exception that leaves a thread would end the whole service.
        }
        wake.wait_for(lock, stop, pauseBetweenRounds, [] { return false; });
    }
}

}  // namespace

// The host calls these three functions on one thread, never two at a time. It contains a std::exception that leaves
// them, but shows nothing of its cause, and any other exception ends the service. So catch everything and return a
// result of your own.

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

/// Only requests the stop: other plug-ins are waiting for their own Stop.
void TransportStop() noexcept { worker.request_stop(); }

/// Waits for the thread, because the library is unloaded when this returns, including the code that the thread runs.
/// The destructor of a global object would be too late: it runs while the loader is locked, and no thread can end.
void TransportCleanup() noexcept {
    if (worker.joinable()) worker.join();
}

const char* TransportFolder() noexcept { return reinterpret_cast<const char*>(incomingText.c_str()); }
