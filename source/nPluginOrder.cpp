#include "source/nPluginOrder.h"
