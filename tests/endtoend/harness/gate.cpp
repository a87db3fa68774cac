#include "tests/endtoend/harness/gate.h"

#include "tests/endtoend/harness/wait.h"

namespace endtoend {

tGate::tGate(const tPath& name) : hold_(tPath(name) += L".hold"), held_(tPath(name) += L".held") {
    writeFile(hold_, "");
}

void tGate::waitUntilHeld() const {
    waitFor("a call to come to " + utf8Path(hold_), [&] { return std::filesystem::exists(held_); });
}

void tGate::open() const {
    std::error_code ignored;
    std::filesystem::remove(hold_, ignored);
}

}  // namespace endtoend
