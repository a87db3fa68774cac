// Never shipped: where there are no access lists, there is nothing to grant.
#include "quarks/processAccess.h"

namespace nProcessAccess {

void grantQueryToEveryone() {}

}  // namespace nProcessAccess
