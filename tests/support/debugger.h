#pragma once

#include <functional>
#include <string>

/// Runs the action and returns its output to the debugger.
std::string debuggerOutput(const std::function<void()>& action);
