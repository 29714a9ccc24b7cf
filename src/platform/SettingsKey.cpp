#include "SettingsBackend.h"

namespace platform {

namespace {
std::wstring& currentKey()
{
    static std::wstring key = L"Software\\Tallyroot";
    return key;
}
} // namespace

const std::wstring& settingsKey()
{
    return currentKey();
}

void setSettingsKey(const std::wstring& subKey)
{
    currentKey() = subKey;
}

} // namespace platform
