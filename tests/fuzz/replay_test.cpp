// Runs every fuzzer over the inputs in corpus/ and regressions/. A fuzzer ends the program when an input breaks a rule;
// the tests that have not run by then count as failed.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace {

struct tFuzzer {
    std::string name;
    int (*run)(const std::uint8_t* data, std::size_t size);
};

}  // namespace

#include "fuzzers.inc"

namespace {

std::vector<std::uint8_t> read(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The number of inputs in this folder; each has been run.
std::size_t replay(const tFuzzer& fuzzer, const std::filesystem::path& folder) {
    std::size_t count = 0;
    if (!exists(folder)) return 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::cerr << entry.path().filename().string() << '\n';
        const auto input = read(entry.path());
        fuzzer.run(input.data(), input.size());
        ++count;
    }
    return count;
}

class Replay : public testing::TestWithParam<tFuzzer> {};

TEST_P(Replay, EveryKnownInputPasses) {
    const char* const inputs = std::getenv("ZUZIPTRA_INPUTS");
    ASSERT_NE(inputs, nullptr) << "ZUZIPTRA_INPUTS names the folder with corpus/ and regressions/";
    const std::filesystem::path folder(inputs);
    ASSERT_GT(replay(GetParam(), folder / "corpus" / GetParam().name), 0U);
    replay(GetParam(), folder / "regressions" / GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(, Replay, testing::ValuesIn(fuzzers),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
