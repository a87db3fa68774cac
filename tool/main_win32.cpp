#include <string>
#include <string_view>
#include <vector>

#include "stdpath/utf.h"
#include "tool/run/worker.h"
#include "tool/ziptra.h"

/// The wide arguments are the same on every version of Windows; narrow ones are UTF-8 only since version 1903.
int wmain(int argumentCount, wchar_t** arguments) {
    if (argumentCount == 2 && arguments[1] == std::wstring_view(nRun::workerArgument)) return nRun::runWorker();
    std::vector<std::string> texts;
    for (int i = 1; i < argumentCount; ++i) {
        const std::wstring argument = arguments[i];
        texts.push_back(nStdPath::fileNameToUtf8(std::u16string(argument.begin(), argument.end())));
    }
    return runZiptraOnConsole(texts);
}
