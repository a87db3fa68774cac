#include "quarks/synchronization.h"
