// The service never ships with this: the commands of a machine on which the service cannot run.
#include "tool/install/system.h"
#include "tool/notHere.h"

namespace nInstall {

tSystem thisSystem(const tAccess& access) { nNotHere::refuse(access.command); }

}  // namespace nInstall
