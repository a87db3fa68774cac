// Runs every fuzzer over its seeds (corpus/NAME), the inputs that searches found (corpus/NAME.base64, one per line) and
// the inputs that once failed (regressions/NAME). A fuzzer ends the program when an input violates a rule; tests that
// have not run by then count as failed.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct tFuzzer {
    std::string name;
    int (*run)(const std::uint8_t* data, std::size_t size);
};

}  // namespace

#include "fuzzers.inc"

namespace {

using tInput = std::vector<std::uint8_t>;

tInput read(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// RFC 4648, section 4.
tInput decodeBase64(std::string_view text) {
    static constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    tInput bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char digit : text.substr(0, text.find('='))) {
        bits = bits << 6 | static_cast<unsigned>(alphabet.find(digit));
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> count));
    }
    return bytes;
}

/// The names of the inputs, for messages, and the inputs.
std::vector<std::pair<std::string, tInput>> knownInputs(const std::filesystem::path& folder,
                                                        const std::string& fuzzer) {
    std::vector<std::pair<std::string, tInput>> inputs;
    for (const auto& files : {folder / "corpus" / fuzzer, folder / "regressions" / fuzzer}) {
        if (!exists(files)) continue;
        for (const auto& entry : std::filesystem::directory_iterator(files)) {
            inputs.emplace_back(entry.path().filename().string(), read(entry.path()));
        }
    }
    std::ifstream found(folder / "corpus" / (fuzzer + ".base64"));
    std::size_t number = 0;
    for (std::string line; std::getline(found, line);) {
        inputs.emplace_back("found input " + std::to_string(++number), decodeBase64(line));
    }
    return inputs;
}

class Replay : public testing::TestWithParam<tFuzzer> {};

TEST_P(Replay, EveryKnownInputPasses) {
    const char* const inputs = std::getenv("ZUZIPTRA_INPUTS");
    ASSERT_NE(inputs, nullptr) << "ZUZIPTRA_INPUTS names the folder with corpus/ and regressions/";
    const auto known = knownInputs(inputs, GetParam().name);
    ASSERT_FALSE(known.empty());
    for (const auto& [name, input] : known) {
        std::cerr << name << '\n';
        GetParam().run(input.data(), input.size());
    }
}

INSTANTIATE_TEST_SUITE_P(, Replay, testing::ValuesIn(fuzzers),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
