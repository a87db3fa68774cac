// Example of a plug-in with its own thread: it moves files from "outbox" to "incoming".
#include "Transport.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <ziptra/plugin.hpp>

#include "Settings.h"

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds pauseBetweenRounds{200};

fs::path utf8(const char* text) { return {reinterpret_cast<const char8_t*>(text)}; }

/// Initialize constructs an object of this class, and Cleanup destroys it. If a folder cannot be created, the
/// constructor throws, the plug-in has not started, and the status file shows -1.
class Transport {
public:
    Transport() {
        fs::create_directories(outbox_);
        fs::create_directories(incoming_);
        worker_.start([this](const ziptra::StopRequest& stop) { work(stop); });
    }

    [[nodiscard]] const char* folder() const { return reinterpret_cast<const char*>(incomingText_.c_str()); }

private:
    /// Waits for the stop request: a plain sleep would delay the service's stop.
    void work(const ziptra::StopRequest& stop) const {
        do {
            try {
                deliver();
            } catch (...) {
                // For example, out of memory: the next round tries again. An exception that leaves this function would
                // end the thread.
            }
        } while (!stop.wait(pauseBetweenRounds));
    }

    /// A rename moves a file completely or not at all, so a crash neither loses nor duplicates it. A file whose name
    /// begins with a full stop is still being written. Files that cannot be moved are tried again in the next round.
    void deliver() const {
        std::error_code ignored;
        for (const fs::directory_entry& entry : fs::directory_iterator(outbox_, ignored)) {
            const fs::path target = incoming_ / entry.path().filename();
            const bool ready = entry.is_regular_file(ignored) && !target.filename().native().starts_with(L'.');
            if (ready && !fs::exists(target, ignored)) fs::rename(entry.path(), target, ignored);
        }
    }

    const fs::path data_ = utf8(SettingsFolder()) / utf8(SettingsValue("DataFolder", "data"));
    const fs::path outbox_ = data_ / L"outbox";
    const fs::path incoming_ = data_ / L"incoming";
    const std::u8string incomingText_ = incoming_.u8string();
    ziptra::Worker worker_;  // the last member: its thread uses the others
};

}  // namespace

ZIPTRA_PLUGIN(Transport)

/// Dependants call this between their own Initialize and Cleanup, and the object exists as long.
ZIPTRA_EXPORT const char* TransportFolder() noexcept { return ziptra::plugin<Transport>()->folder(); }
