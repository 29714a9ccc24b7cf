// What only the registry shows: stored types and sizes, the debug lines of the
// helpers, and the shell lookups, all against Wine's real registry.

#include "../IsolatedSettings.h"
#include "../MiniTest.h"
#include "DebugLog.h"
#include "ScreenMetrics.h"
#include "SettingsBackend.h"
#include "UserFolders.h"
#include "Volumes.h"
#include "win32/RegistryKey.h"
#include "win32/Win32ColourScheme.h"
#include "win32/Win32Registry.h"

#include <windows.h>

#include <string>
#include <vector>

namespace {

std::vector<std::wstring>& logged()
{
    static std::vector<std::wstring> lines;
    return lines;
}

void capture(const std::wstring& line)
{
    logged().push_back(line);
}

struct RawValue {
    DWORD type = REG_NONE;
    DWORD size = 0;
};

RawValue rawValue(const std::wstring& name)
{
    RawValue raw;
    win32::RegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, platform::settingsKey().c_str(), 0, KEY_READ,
                      key.receive()) == ERROR_SUCCESS)
        RegQueryValueExW(key.get(), name.c_str(), nullptr, &raw.type, nullptr, &raw.size);
    return raw;
}

void setRaw(const std::wstring& name, DWORD type, const void* data, DWORD size)
{
    win32::RegistryKey key;
    RegCreateKeyExW(HKEY_CURRENT_USER, platform::settingsKey().c_str(), 0, nullptr, 0, KEY_WRITE,
                    nullptr, key.receive(), nullptr);
    RegSetValueExW(key.get(), name.c_str(), 0, type, static_cast<const BYTE*>(data), size);
}

} // namespace

TEST_CASE(stringsAreStoredWithTheirTerminatingNull)
{
    const std::wstring path = L"C:\\Users\\\u00e9";
    CHECK(platform::writeStringValue(L"RecentFile1", path));
    const RawValue raw = rawValue(L"RecentFile1");
    CHECK(raw.type == REG_SZ);
    CHECK(raw.size == (path.size() + 1) * 2);

    CHECK(platform::writeStringValue(L"RecentFile2", L""));
    CHECK(rawValue(L"RecentFile2").size == 2);
}

TEST_CASE(numbersAreStoredAsDwords)
{
    CHECK(platform::writeDwordValue(L"width", 986));
    const RawValue raw = rawValue(L"width");
    CHECK(raw.type == REG_DWORD);
    CHECK(raw.size == 4);
}

TEST_CASE(aFourByteBinaryIsNotANumber)
{
    const DWORD bytes = 1234;
    setRaw(L"posY", REG_BINARY, &bytes, sizeof bytes);
    std::uint32_t value = 100;
    CHECK(!platform::readDwordValue(L"posY", value));
    CHECK(value == 100);
}

TEST_CASE(expandableStringsComeBackExpanded)
{
    const std::wstring stored = L"%SystemRoot%\\Downloads";
    setRaw(L"RecentFile4", REG_EXPAND_SZ, stored.c_str(),
           static_cast<DWORD>((stored.size() + 1) * sizeof(wchar_t)));
    std::wstring text;
    CHECK(platform::readStringValue(L"RecentFile4", text));
    CHECK(!text.empty());
    CHECK(text.find(L'%') == std::wstring::npos);
    CHECK(text.size() > std::wstring(L"\\Downloads").size());
}

TEST_CASE(helpersWriteTheirDebugLines)
{
    logged().clear();
    platform::setDebugSink(&capture);

    DWORD number = 0;
    CHECK(!win32::readDwordValue(HKEY_CURRENT_USER, platform::settingsKey(), L"missing", number));
    CHECK(platform::writeDwordValue(L"posX", 5));
    std::wstring text;
    CHECK(!platform::readStringValue(L"missing", text));
    CHECK(!win32::readStringValue(HKEY_CURRENT_USER, L"Software\\NoSuchKey\\Anywhere", L"x", text));

    platform::setDebugSink(nullptr);
    CHECK(logged().size() == 3);
    if (logged().size() == 3) {
        CHECK(logged()[0] ==
              platform::settingsKey() + L" : missing : Cannot read DWORD from registry.");
        CHECK(logged()[1] == L"true");
        CHECK(logged()[2] == L"error");
    }
}

TEST_CASE(specialFoldersAreFound)
{
    using platform::SpecialFolder;
    for (auto which : {SpecialFolder::Documents, SpecialFolder::Music, SpecialFolder::Pictures,
                       SpecialFolder::Videos, SpecialFolder::Profile})
        CHECK(!platform::specialFolderPath(which).empty());

    wchar_t expected[MAX_PATH] = {};
    GetWindowsDirectoryW(expected, MAX_PATH);
    CHECK(platform::windowsFolderPath() == expected);
    CHECK(!platform::windowsFolderPath().empty());
}

TEST_CASE(downloadsAndOneDriveComeFromTheUserHive)
{
    const std::wstring downloads = platform::downloadsFolderPath();
    CHECK(!downloads.empty());
    CHECK(downloads.find(L'%') == std::wstring::npos);

    // Read from the test's key, never from the user's own Environment key.
    const std::wstring oneDrive = L"C:\\users\\tester\\OneDrive - \u00c9cole";
    CHECK(
        win32::writeStringValue(HKEY_CURRENT_USER, platform::settingsKey(), L"OneDrive", oneDrive));
    CHECK(platform::oneDriveFolderPath() == oneDrive);
    RegDeleteKeyValueW(HKEY_CURRENT_USER, platform::settingsKey().c_str(), L"OneDrive");
    CHECK(platform::oneDriveFolderPath().empty());
}

TEST_CASE(wineHasFixedDrivesCAndZ)
{
    std::wstring drives;
    for (const auto& volume : platform::fixedVolumes())
        drives += volume.drive;
    CHECK(drives.find(L"C:") != std::wstring::npos);
    CHECK(drives.find(L"Z:") != std::wstring::npos);
    for (const auto& volume : platform::fixedVolumes())
        CHECK(volume.rootPath == volume.drive + L"\\");
    // A drive's root is a volume's root, with or without its backslash; a folder in it is not.
    CHECK(platform::volumeRootedAt(L"C:\\").has_value());
    CHECK(platform::volumeRootedAt(L"C:").has_value());
    CHECK(!platform::volumeRootedAt(L"C:\\windows").has_value());
}

// Read from the test's key, never from the user's own Personalize key.
TEST_CASE(appsUseLightThemeGivesTheColourScheme)
{
    using platform::ColourScheme;
    const std::wstring& key = platform::settingsKey();
    CHECK(win32::appsColourScheme(HKEY_CURRENT_USER, key) == ColourScheme::Unknown);
    CHECK(win32::writeDwordValue(HKEY_CURRENT_USER, key, L"AppsUseLightTheme", 0));
    CHECK(win32::appsColourScheme(HKEY_CURRENT_USER, key) == ColourScheme::Dark);
    CHECK(win32::writeDwordValue(HKEY_CURRENT_USER, key, L"AppsUseLightTheme", 1));
    CHECK(win32::appsColourScheme(HKEY_CURRENT_USER, key) == ColourScheme::Light);
    CHECK(win32::writeStringValue(HKEY_CURRENT_USER, key, L"AppsUseLightTheme", L"0"));
    CHECK(win32::appsColourScheme(HKEY_CURRENT_USER, key) == ColourScheme::Unknown);
    CHECK(win32::appsColourScheme(HKEY_CURRENT_USER, L"Software\\NoSuchKey\\Anywhere") ==
          ColourScheme::Unknown);
    RegDeleteKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"AppsUseLightTheme");
}

TEST_CASE(theFullScreenAreaIsKnown)
{
    const auto size = platform::fullScreenClientSize();
    CHECK(size.width > 0);
    CHECK(size.height > 0);
}

int main()
{
    IsolatedSettings isolated;
    return minitest::runAll("RegistryTest");
}
