#include "source/tService.h"
