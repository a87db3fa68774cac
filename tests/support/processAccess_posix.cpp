// Never shipped: there are no access lists here, so there is nothing to grant.
#include "quarks/processAccess.h"

namespace nProcessAccess {

void grantQueryToEveryone() {}

}  // namespace nProcessAccess
