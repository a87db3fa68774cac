#include "source/tSharedLibrary.h"
