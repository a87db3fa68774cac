#pragma once

#include "tests/endtoend/harness/system.h"

namespace endtoend {

/// Holds the calls that wait at a gate (tests/plugins/gate.h) until it is opened, or goes.
class tGate {
public:
    explicit tGate(const tPath& name);
    ~tGate() { open(); }
    tGate(const tGate&) = delete;
    tGate& operator=(const tGate&) = delete;

    /// Until a call has come to the gate.
    void waitUntilHeld() const;
    void open() const;

private:
    tPath hold_;
    tPath held_;
};

}  // namespace endtoend
