#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "err/ErrorConstants.h"
#include "err/JsonReport.h"

namespace zuerr {

/// What one raise reports, and the report itself: all of it is known when the program is compiled, so it is written
/// then, and a raise costs a buffer and a copy. Too long a report does not compile.
class RaiseReport {
public:
    consteval RaiseReport(const ErrorConstant& constant, const RaiseSite& site)
        : RaiseReport(constant.code, constant.text, site, hostComponent) {}

    /// For a code that is known only when it is raised. A null constant or component is left out.
    consteval RaiseReport(const char* constant, const RaiseSite& site, const char* component = hostComponent)
        : RaiseReport(0, constant, site, component) {}

    /// Of the error constant; 0 where it is given with the raise.
    [[nodiscard]] std::int32_t code() const noexcept { return code_; }
    [[nodiscard]] const char* constant() const noexcept { return constant_; }
    [[nodiscard]] const RaiseSite& site() const noexcept { return site_; }
    [[nodiscard]] const char* component() const noexcept { return component_; }

    /// A JSON object with error_constant, file, line and component, in this order.
    [[nodiscard]] std::string_view text() const noexcept { return {text_.data(), length_}; }

private:
    consteval RaiseReport(std::int32_t code, const char* constant, const RaiseSite& site, const char* component)
        : code_(code), constant_(constant), site_(site), component_(component) {
        if (constant != nullptr) addText("error_constant", constant);
        addText("file", site.file);
        addNumber("line", site.line);
        if (component != nullptr) addText("component", component);
        add('}');
    }

    constexpr void add(char character) { text_.at(length_++) = character; }

    constexpr void addQuoted(const char* text) {
        add('"');
        for (; *text != 0; ++text) {
            const char letter = jsonEscapeLetter(*text);
            if (letter != 0) add('\\');
            add(letter == 0 ? *text : letter);
        }
        add('"');
    }

    constexpr void addKey(const char* key) {
        add(length_ == 0 ? '{' : ',');
        addQuoted(key);
        add(':');
    }

    constexpr void addText(const char* key, const char* value) {
        addKey(key);
        addQuoted(value);
    }

    /// Lines are counted from 1 on.
    constexpr void addNumber(const char* key, std::int32_t value) {
        addKey(key);
        std::int32_t place = 1;
        while (value / place >= 10) place *= 10;
        for (; place > 0; place /= 10) add(static_cast<char>('0' + value / place % 10));
    }

    std::int32_t code_;
    const char* constant_;
    RaiseSite site_;
    const char* component_;
    std::array<char, 256> text_{};
    std::size_t length_ = 0;
};

}  // namespace zuerr
