#include "source/statusFile.h"
