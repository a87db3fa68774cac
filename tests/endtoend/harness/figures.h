#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace endtoend {

/// Prints a line of the table that the test run shows at its end.
template <class Number>
void figure(std::string_view what, Number number) {
    std::cout << "FIGURE " << what << ": " << number << std::endl;
}

/// Returns `usual` unless an environment variable specifies another number, for a longer run.
inline int setting(const char* variable, int usual) {
    const char* const text = std::getenv(variable);
    const int number = text == nullptr ? 0 : std::atoi(text);
    return number > 0 ? number : usual;
}

}  // namespace endtoend
