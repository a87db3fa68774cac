#include "source/nDeployment.h"
