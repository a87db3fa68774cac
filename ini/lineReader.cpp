#include "ini/document.h"
