#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace endurance {

/// A line of the table that the test run prints. Numbers are counted by what ran.
template <class Number>
void figure(std::string_view what, Number number) {
    std::cout << "FIGURE " << what << ": " << number << std::endl;
}

/// A number that an environment variable may raise for a longer run.
inline int setting(const char* variable, int usual) {
    const char* const text = std::getenv(variable);
    const int number = text == nullptr ? 0 : std::atoi(text);
    return number > 0 ? number : usual;
}

}  // namespace endurance
