#include "stdpath/stdpath.h"
