#pragma once

#include <functional>
#include <string>

/// What an action hands to the debugger.
std::string debuggerOutput(const std::function<void()>& action);
