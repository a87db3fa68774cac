// Compares the record read from any description file with a plain implementation of the rules: the same record, or the
// same error with the record unchanged.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "err/Exception.h"
#include "naiveIni.h"
#include "source/nPluginData.h"
#include "temporaryFile.h"

namespace {

/// Parses like "%u": blanks, a sign, digits; the low 32 bits of a number that fits 64.
std::uint32_t expectedRequires(const std::string& value) {
    if (value.empty()) return 1;
    std::size_t i = 0;
    while (i < value.size() && naive::isSpace(value[i])) ++i;
    const bool negative = i < value.size() && value[i] == '-';
    if (i < value.size() && (value[i] == '-' || value[i] == '+')) ++i;
    unsigned long number = 0;  // as wide as the platform's, which decides where it overflows
    for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i) {
        const auto digit = static_cast<unsigned long>(value[i] - '0');
        if (number > (ULONG_MAX - digit) / 10) return UINT32_MAX;
        number = number * 10 + digit;
    }
    return static_cast<std::uint32_t>(negative ? 0 - number : number);
}

std::vector<std::string> expectedDependencies(const std::string& value) {
    std::vector<std::string> list;
    std::string name;
    for (const char c : value + ",") {
        if (c != ',') {
            name += c;
            continue;
        }
        name = naive::trim(name);
        if (!name.empty()) list.push_back(name);
        name.clear();
    }
    std::stable_sort(list.begin(), list.end());
    return list;
}

void compare(const tPluginDescription& record, tNaiveIni& file) {
    check(record.name == file.value("service", "NAME"), "name");
    check(record.dependencies == expectedDependencies(file.value("service", "DEPENDENCIES")), "dependencies");
    check(record.requiresMask == expectedRequires(file.value("service", "REQUIRES")), "requires");
    check(record.path == file.value("service", "PATH"), "path");
    check(record.initialize == file.value("service", "INITIALIZE"), "initialize");
    check(record.stop == file.value("service", "STOP"), "stop");
    check(record.cleanup == file.value("service", "CLEANUP"), "cleanup");
}

std::int32_t expectedCode(tNaiveIni& file, std::string_view text) {
    file.flags = 3;
    const int result = file.parse(text);
    return result != 0 ? result : file.firstErrorLine == -1 ? 0 : -52005;
}

std::int32_t read(const std::string& path, tPluginDescription& record) {
    try {
        nPluginData::readDescription(path, record);
        return 0;
    } catch (const zuerr::Exception& exception) {
        return exception.record.code;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    static const tTemporaryFile file;
    file.write(text);

    tPluginDescription record;
    record.name = "as it was";
    record.requiresMask = 77;
    const std::int32_t code = read(file.path(), record);
    tNaiveIni expected;
    check(code == expectedCode(expected, text), "code");
    if (code == 0) {
        compare(record, expected);
    } else {
        check(record.name == "as it was" && record.requiresMask == 77, "the record of a rejected file");
    }
    return 0;
}
