// The service never ships with this: what there is to know where the host cannot run.
#include "tool/check/thisMachine.h"

namespace nThisMachine {

bool runsHost() noexcept { return false; }

tAllowed queryAllowed() { return {}; }

}  // namespace nThisMachine
