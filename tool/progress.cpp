#include "tool/progress.h"

#include <ostream>
#include <utility>

#include "tool/format.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds patience{1000};
constexpr milliseconds interval{100};  // between two changes of the line

milliseconds steadyTime() {
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

// The line's beginning, and the escape sequence that erases what follows.
constexpr const char* eraseLine = "\r\x1B[K";

}  // namespace

tProgress::tProgress(tContext& context, std::string what, std::size_t total)
    : tProgress(context, std::move(what), total, steadyTime) {}

tProgress::tProgress(tContext& context, std::string what, std::size_t total, tClock clock)
    : context_(context), what_(std::move(what)), total_(total), clock_(std::move(clock)), next_(clock_() + patience) {}

tProgress::~tProgress() {
    if (shown_) context_.error << eraseLine << std::flush;
}

void tProgress::advance() {
    ++done_;
    if (!context_.progress) return;
    const milliseconds now = clock_();
    if (now < next_) return;
    next_ = now + interval;
    show();
}

void tProgress::show() {
    std::string total;
    if (total_ != 0) total = fmt::format(" of {}", total_);
    context_.error << fmt::format("{}{}: {}{}", eraseLine, what_, done_, total) << std::flush;
    shown_ = true;
}
