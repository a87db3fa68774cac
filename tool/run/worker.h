#pragma once

namespace nRun {

/// The argument that makes this program the process that runs plug-ins. People never write it.
inline constexpr const wchar_t* workerArgument = L"--run-plugins";

/// Reads the order from standard input, runs the plug-ins, and reports to standard output, which the plug-ins do not
/// reach. Returns the exit code, if the plug-ins let it. If it cannot report, it ends with lostReportsCode.
int runWorker();

}  // namespace nRun
