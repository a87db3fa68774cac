// The service never ships with this: plug-ins are libraries for Windows.
#include "tool/run/lives.h"

namespace nRun {

tResult run(const tOrder& /*order*/, std::uint64_t /*limitMs*/, const std::function<void()>& /*onLife*/) {
    throw tCannotRun("Plug-ins can only be run on Windows, because they are libraries for it");
}

}  // namespace nRun
