#include "source/nPluginData.h"
