#include "quarks/processAccess.h"
