#include "quarks/library.h"
