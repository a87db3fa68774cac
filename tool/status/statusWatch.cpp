#include "tool/status/statusWatch.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <ostream>

#include "tool/console.h"
#include "tool/format.h"
#include "tool/plainText.h"
#include "tool/status/statusSource.h"
#include "tool/status/statusTable.h"
#include "tool/status/terminal.h"

namespace nStatus {
namespace {

constexpr std::chrono::milliseconds interval(1000);

std::size_t countLines(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// What the user sees, with the last content that could be read.
class tContent {
public:
    tContent(std::string file, bool colour) : file_(std::move(file)), colour_(colour) {}

    [[nodiscard]] std::string next() {
        try {
            table_ = toTable(readReport(file_), colour_);
            return table_;
        } catch (const tCannotRead& error) {
            return nPlainText::printable(error.what()) + "\n" + table_;  // the end may not fit on the screen
        }
    }

private:
    std::string file_;
    bool colour_;
    std::string table_;
};

/// Switches off what disturbs a display that is redrawn, the cursor and the wrapping of long lines, while it exists.
class tQuietTerminal {
public:
    tQuietTerminal(std::ostream& out, bool isTerminal) : out_(out), isTerminal_(isTerminal) {
        if (isTerminal_) out_ << "\x1B[?25l\x1B[?7l";
    }
    ~tQuietTerminal() {
        if (isTerminal_) out_ << "\x1B[?7h\x1B[?25h" << std::flush;
    }
    tQuietTerminal(const tQuietTerminal&) = delete;
    tQuietTerminal& operator=(const tQuietTerminal&) = delete;

private:
    std::ostream& out_;
    bool isTerminal_;
};

}  // namespace

tDisplay processDisplay() {
    const auto interrupt = std::make_shared<nTerminal::tInterrupt>();
    return {nConsole::isTerminal(nConsole::tStandardStream::output), nTerminal::rows,
            [interrupt] { return interrupt->wait(interval); }};
}

void watch(tContext& context, const std::string& file, const tDisplay& display) {
    const tQuietTerminal quiet(context.out, display.isTerminal);
    tContent content(file, context.colour);
    std::string before;
    do {
        std::string text = content.next();
        if (display.isTerminal) text = firstLines(text, std::max<std::size_t>(display.rows(), 2) - 1);
        if (text == before) continue;
        context.out << (display.isTerminal ? redraw(text, countLines(before)) : text + "\n") << std::flush;
        before = std::move(text);
    } while (!display.waitForEnd() && context.out);
}

std::string redraw(std::string_view lines, std::size_t linesBefore) {
    std::string result = linesBefore == 0 ? "" : fmt::format("\x1B[{}F", linesBefore);
    for (std::size_t end = lines.find('\n'); end != std::string_view::npos; end = lines.find('\n')) {
        result.append(lines.substr(0, end)).append("\x1B[K\n");
        lines.remove_prefix(end + 1);
    }
    return result.append("\x1B[J");
}

std::string firstLines(std::string_view text, std::size_t limit) {
    const std::size_t count = countLines(text);
    if (count <= limit) return std::string(text);
    std::size_t end = 0;
    for (std::size_t line = 1; line < limit; ++line) end = text.find('\n', end) + 1;
    return fmt::format("{}({} more lines)\n", text.substr(0, end), count - limit + 1);
}

}  // namespace nStatus
