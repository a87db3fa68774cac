#include "tests/support/serviceManager.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <thread>

#include "source/serviceControl.h"
#include "source/tService.h"
#include "tests/support/hammer.h"

int hostMain(int argumentCount, char** arguments);

namespace support {
namespace {

constexpr std::array<unsigned long, 3> controls{1, 5, 4};  // stop, shutdown, interrogate

}  // namespace

void tServiceManager::note(unsigned long state, unsigned long checkpoint) {
    const std::size_t at = count_.fetch_add(1, std::memory_order_relaxed);
    const char pending = checkpoint == 1 ? 'r' : 'p';
    const char mark = state == 3 ? pending : static_cast<char>('0' + state);
    if (at < mostReports) reports_[at].store(mark, std::memory_order_relaxed);
    if (state == 4) running_ = true;
}

void tServiceManager::startLife() {
    gStatusLock = 0;
    gConsoleInterrupted = 0;
    count_ = 0;
    running_ = false;
}

std::string tServiceManager::life() const {
    std::string text(reports_.get(), reports_.get() + std::min<std::size_t>(count_, mostReports));
    if (count_ > mostReports) text += ", and more than there is room for";
    const auto bothRequests = [](char a, char b) { return a == 'r' && b == 'r'; };
    text.erase(std::unique(text.begin(), text.end(), bothRequests), text.end());
    return text;
}

void tServiceManager::runServiceMain() {
    std::array<char, 22> name{"zuZiptraRemoteService"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    std::thread([&] { serviceMain(1, arguments.data()); }).join();
}

std::string tServiceManager::hammeredService() {
    startLife();
    std::atomic<bool> over = false;
    std::vector<std::thread> senders;
    for (const unsigned long control : controls) {
        senders.emplace_back([this, control, &over] {
            while (!running_ && !over) std::this_thread::yield();
            for (int number = 0; !over; ++number) {
                serviceControlHandler(control);
                sent.fetch_add(1, std::memory_order_relaxed);
                pauseAfterRequest(number);
            }
        });
    }
    runServiceMain();
    over = true;
    for (std::thread& sender : senders) sender.join();
    return life();
}

std::string tServiceManager::serviceStoppedOnce(unsigned delay) {
    startLife();
    const std::future<void> service = std::async(std::launch::async, runServiceMain);
    while (!running_) std::this_thread::yield();
    spin(delay);
    serviceControlHandler(controls[0]);
    const bool stopped = service.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
    if (!stopped) signalServiceStop();
    service.wait();
    return stopped ? life() : "the stop was lost";
}

bool tServiceManager::change(tHandler handler, bool add) {
    const std::lock_guard lock(mutex_);
    if (add) {
        handlers_.push_back(handler);
        return true;
    }
    const auto found = std::find(handlers_.rbegin(), handlers_.rend(), handler);
    if (found == handlers_.rend()) return false;
    handlers_.erase(std::next(found).base());
    return true;
}

/// The console calls its handlers one event at a time, the most recently added first, and only a handler itself changes
/// the list meanwhile. Returns false if none handles the event, which would end the process.
bool tServiceManager::consoleEvent() {
    const std::lock_guard lock(mutex_);
    const std::vector<tHandler> handlers(handlers_.rbegin(), handlers_.rend());
    return std::any_of(handlers.begin(), handlers.end(), [](tHandler handler) { return handler(0) != 0; });
}

int tServiceManager::hammeredForeground(unsigned delay) {
    startLife();
    std::atomic<bool> over = false;
    std::vector<std::thread> senders;
    for (unsigned i = 0; i < 3; ++i) {
        senders.emplace_back([this, wait = delay + i * 150'000, &over] {
            spin(wait);
            while (!over) {
                if (consoleEvent()) sent.fetch_add(1, std::memory_order_relaxed);
                spin(1'000);
            }
        });
    }
    std::array<char, 22> name{"zuZiptraRemoteService"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    const int code = hostMain(1, arguments.data());
    over = true;
    for (std::thread& sender : senders) sender.join();
    return code;
}

}  // namespace support
