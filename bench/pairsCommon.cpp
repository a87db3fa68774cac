#include <cstdlib>
#include <stdexcept>

#include "bench/pairs.h"

namespace nBench {

bool quick() {
    return std::getenv("BENCH_QUICK") != nullptr;  // NOLINT(concurrency-mt-unsafe): nothing changes the environment
}

void demand(bool condition, std::string_view text) {
    if (!condition) throw std::runtime_error(std::string(text));
}

std::function<void()> repeat(int times, const std::function<void()>& work) {
    return [times, work] {
        for (int i = 0; i < times; ++i) work();
    };
}

}  // namespace nBench
