// The service never ships with this: the companion tool on systems other than Windows, where arguments are UTF-8.
#include <algorithm>

#include "tool/ziptra.h"

int main(int argumentCount, char** arguments) {
    return runZiptraOnConsole({arguments + std::min(argumentCount, 1), arguments + argumentCount});
}
