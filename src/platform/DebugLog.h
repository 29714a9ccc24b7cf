#pragma once

#include <string>

// The platform layer has no logging framework of its own (the Win32 backend is
// built without Qt), so its debug lines go to a sink the application installs.
namespace platform {

using DebugSink = void (*)(const std::wstring& line);

void setDebugSink(DebugSink sink);
void debugLog(const std::wstring& line);

} // namespace platform
