// Fails while it is loaded or unloaded, in the way that the environment variable TEST_FAULT names.
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace {

bool isFault(std::string_view name) {
    const char* const fault = std::getenv("TEST_FAULT");
    return fault != nullptr && fault == name;
}

void useNoMemory() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 0;
}

struct tLife {
    tLife() {
        if (isFault("fault while loading")) useNoMemory();
        if (isFault("throw while loading")) throw std::runtime_error("while loading");
        if (isFault("throw something while loading")) throw 7;
    }
    ~tLife() {
        if (isFault("fault while unloading")) useNoMemory();
    }
    tLife(const tLife&) = delete;
    tLife& operator=(const tLife&) = delete;
};
const tLife life;

}  // namespace

extern "C" {

int InitOk() { return 0; }
}
