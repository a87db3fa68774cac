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

struct Life {
    Life() {
        if (isFault("fault while loading")) useNoMemory();
        if (isFault("throw while loading")) throw std::runtime_error("while loading");
        if (isFault("throw something while loading")) throw 7;
    }
    ~Life() {
        if (isFault("fault while unloading")) useNoMemory();
    }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;
};
const Life life;

}  // namespace

extern "C" {

int InitOk() { return 0; }
}
