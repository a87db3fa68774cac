#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "tool/console.h"

namespace {

using nConsole::tStandardStream;

/// While it exists, this descriptor is another file.
class tRedirection {
public:
    tRedirection(int descriptor, int file) : descriptor_(descriptor), before_(dup(descriptor)) {
        dup2(file, descriptor);
    }
    ~tRedirection() {
        dup2(before_, descriptor_);
        close(before_);
    }
    tRedirection(const tRedirection&) = delete;
    tRedirection& operator=(const tRedirection&) = delete;

private:
    int descriptor_;
    int before_;
};

/// While it exists, an environment variable has this value, or none.
class tVariable {
public:
    tVariable(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~tVariable() { set(before_ ? before_->c_str() : nullptr); }
    tVariable(const tVariable&) = delete;
    tVariable& operator=(const tVariable&) = delete;

private:
    void set(const char* value) const {
        if (value == nullptr) {
            unsetenv(name_);
        } else {
            setenv(name_, value, 1);
        }
    }

    const char* name_;
    std::optional<std::string> before_;
};

/// A terminal of our own.
struct tTerminal {
    tTerminal() : master(posix_openpt(O_RDWR | O_NOCTTY)), slave(openSlave(master)) {}
    ~tTerminal() {
        close(slave);
        close(master);
    }
    tTerminal(const tTerminal&) = delete;
    tTerminal& operator=(const tTerminal&) = delete;

    static int openSlave(int terminal) {
        grantpt(terminal);
        unlockpt(terminal);
        return open(ptsname(terminal), O_RDWR | O_NOCTTY);
    }

    int master;
    int slave;
};

TEST(nConsolePosix, ShowsColoursOnATerminalThatKnowsThemUnlessForbidden) {
    const tTerminal terminal;
    const tRedirection redirection(STDOUT_FILENO, terminal.slave);
    struct {
        const char* terminal;
        const char* noColour;
        bool expected;
    } const rows[] = {{"xterm", nullptr, true},
                      {"xterm", "", true},
                      {"xterm", "1", false},
                      {"dumb", nullptr, false},
                      {nullptr, nullptr, false}};
    for (const auto& row : rows) {
        const tVariable type("TERM", row.terminal);
        const tVariable noColour("NO_COLOR", row.noColour);
        EXPECT_TRUE(nConsole::isTerminal(tStandardStream::output));
        EXPECT_EQ(nConsole::showsColours(tStandardStream::output), row.expected);
    }
}

TEST(nConsolePosix, ShowsNoColoursInAPipeAndWritesTheBytesAsTheyAre) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string text = "插件\xFF\n";
    for (const tStandardStream stream : {tStandardStream::output, tStandardStream::error}) {
        const tRedirection redirection(stream == tStandardStream::output ? STDOUT_FILENO : STDERR_FILENO, ends[1]);
        const tVariable type("TERM", "xterm");
        const tVariable noColour("NO_COLOR", nullptr);
        EXPECT_FALSE(nConsole::isTerminal(stream));
        EXPECT_FALSE(nConsole::showsColours(stream));
        EXPECT_TRUE(nConsole::write(stream, text));
        std::string read(text.size(), 0);
        EXPECT_EQ(::read(ends[0], read.data(), read.size()), static_cast<ssize_t>(text.size()));
        EXPECT_EQ(read, text);
    }
    close(ends[0]);
    close(ends[1]);
}

TEST(nConsolePosix, SaysThatItCannotWriteToAFullDevice) {
    const int full = open("/dev/full", O_WRONLY);
    const tRedirection redirection(STDOUT_FILENO, full);
    EXPECT_FALSE(nConsole::write(tStandardStream::output, "a"));
    close(full);
}

}  // namespace
