#include "DebugLog.h"

#include <atomic>

namespace platform {

namespace {
std::atomic<DebugSink> currentSink{nullptr};
}

void setDebugSink(DebugSink sink)
{
    currentSink.store(sink);
}

void debugLog(const std::wstring& line)
{
    if (DebugSink sink = currentSink.load())
        sink(line);
}

} // namespace platform
