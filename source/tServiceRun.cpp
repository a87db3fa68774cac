#include "source/tService.h"

void tService::run() { stopEvent.wait(); }
