#include "source/serviceControl.h"
