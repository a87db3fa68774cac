#pragma once

#include <locale>
#include <string>

namespace support {

/// While it exists, digits are grouped, as in some locales.
class tGroupingLocale {
public:
    tGroupingLocale() : before_(std::locale::global(std::locale(std::locale::classic(), new tPunctuation))) {}
    ~tGroupingLocale() { std::locale::global(before_); }
    tGroupingLocale(const tGroupingLocale&) = delete;
    tGroupingLocale& operator=(const tGroupingLocale&) = delete;

private:
    struct tPunctuation : std::numpunct<char> {
        [[nodiscard]] char do_thousands_sep() const override { return '.'; }
        [[nodiscard]] std::string do_grouping() const override { return "\3"; }
    };
    std::locale before_;
};

}  // namespace support
