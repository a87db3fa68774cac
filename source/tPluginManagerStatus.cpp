#include "source/tPluginManager.h"
