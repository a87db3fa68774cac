#pragma once

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Holds the calls that wait at a gate (tests/plugins/gate.h) until it is opened or destroyed.
class tGate {
public:
    explicit tGate(const tPath& name);
    ~tGate() { open(); }
    tGate(const tGate&) = delete;
    tGate& operator=(const tGate&) = delete;

    /// Waits until a call has arrived at the gate.
    void waitUntilHeld() const;
    void open() const;

private:
    tPath hold_;
    tPath held_;
};

}  // namespace endtoend
