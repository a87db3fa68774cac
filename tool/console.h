#pragma once

#include <array>
#include <functional>
#include <streambuf>
#include <string_view>

/// The process's standard streams, which take UTF-8 whatever they are connected to. Lines end with LF everywhere.
namespace nConsole {

enum class tStandardStream { output, error };

/// Returns whether people see at once what is written there.
[[nodiscard]] bool isTerminal(tStandardStream stream) noexcept;

/// Returns whether the stream is a terminal that shows colours, and the user has not forbidden them with the
/// environment variable NO_COLOR (https://no-color.org). On Windows, switches them on.
[[nodiscard]] bool showsColours(tStandardStream stream) noexcept;

/// The platform's part of showsColours.
[[nodiscard]] bool enableColours(tStandardStream stream) noexcept;

/// Writes the text without any buffer. Returns false if not all of it could be written.
/// Requires: whole characters, unless the stream is not a terminal.
[[nodiscard]] bool write(tStandardStream stream, std::string_view text);

/// Returns the length of the text without an incomplete UTF-8 character at its end.
[[nodiscard]] std::size_t wholeCharacters(std::string_view text) noexcept;

/// A buffer for a std::ostream. Passes text to a function that returns false on failure, which the stream then shows
/// too. No character is cut in two, except by a flush in the middle of it.
class tBuffer : public std::streambuf {
public:
    using tWrite = std::function<bool(std::string_view)>;

    explicit tBuffer(tWrite write);
    ~tBuffer() override;
    tBuffer(const tBuffer&) = delete;
    tBuffer& operator=(const tBuffer&) = delete;

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    bool writeFirst(std::size_t size);

    tWrite write_;
    std::array<char, 8192> bytes_{};
};

}  // namespace nConsole
