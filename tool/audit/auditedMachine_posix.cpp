// The service never ships with this: a machine on which the service cannot run.
#include "tool/audit/auditRun.h"
#include "tool/notHere.h"

namespace nAudit {

tMachine thisMachine() { nNotHere::refuse("audit"); }

}  // namespace nAudit
