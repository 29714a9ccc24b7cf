// The same cases run against each settings backend: the settings file on Linux,
// the registry under Wine.

#include "SettingsBackend.h"
#include "IsolatedSettings.h"
#include "MiniTest.h"

#include <string>

using namespace platform;

TEST_CASE(missingValuesLeaveTheDefaults)
{
    std::uint32_t number = 986;
    CHECK(!readDwordValue(L"width", number));
    CHECK(number == 986);

    std::wstring text = L"left over";
    CHECK(!readStringValue(L"RecentFile1", text));
    CHECK(text.empty());
}

TEST_CASE(numbersKeepAllThirtyTwoBits)
{
    for (std::uint32_t stored : {0u, 100u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        CHECK(writeDwordValue(L"posX", stored));
        std::uint32_t read = 1;
        CHECK(readDwordValue(L"posX", read));
        CHECK(read == stored);
    }
}

TEST_CASE(stringsKeepTheirTextExactly)
{
    const std::wstring texts[] = {
        L"",
        L"C:\\Temp",
        L"1;D:\\Data;with:colons",
        L"\u00dcbung \u65e5\u672c\u8a9e \u0436",
        L"line one\nline two\\n not an escape",
        std::wstring(40000, L'x'),
    };
    for (const auto& stored : texts) {
        CHECK(writeStringValue(L"RecentFile2", stored));
        std::wstring read = L"stale";
        CHECK(readStringValue(L"RecentFile2", read));
        CHECK(read == stored);
    }
}

TEST_CASE(aValueOfTheOtherTypeReadsAsMissing)
{
    CHECK(writeStringValue(L"height", L"600"));
    std::uint32_t number = 513;
    CHECK(!readDwordValue(L"height", number));
    CHECK(number == 513);

    CHECK(writeDwordValue(L"RecentFile3", 7));
    std::wstring text = L"stale";
    CHECK(!readStringValue(L"RecentFile3", text));
    CHECK(text.empty());

    // Writing again with the other type replaces the value.
    CHECK(writeDwordValue(L"height", 600));
    CHECK(readDwordValue(L"height", number));
    CHECK(number == 600);
}

TEST_CASE(valueNamesIgnoreCase)
{
    CHECK(writeStringValue(L"ExludeFolder0", L"1;C:\\Temp"));
    CHECK(writeStringValue(L"exludefolder0", L"0;C:\\Temp"));
    std::wstring text;
    CHECK(readStringValue(L"EXLUDEFOLDER0", text));
    CHECK(text == L"0;C:\\Temp");
}

TEST_CASE(staleValuesStay)
{
    const auto folder = [](int i) { return L"ExludeFolder" + std::to_wstring(i); };
    for (int i = 0; i < 5; ++i)
        CHECK(writeStringValue(folder(i), L"1;old" + std::to_wstring(i)));
    for (int i = 0; i < 3; ++i)
        CHECK(writeStringValue(folder(i), L"1;new" + std::to_wstring(i)));

    std::wstring text;
    CHECK(readStringValue(L"ExludeFolder1", text));
    CHECK(text == L"1;new1");
    CHECK(readStringValue(L"ExludeFolder3", text));
    CHECK(text == L"1;old3");
    CHECK(readStringValue(L"ExludeFolder4", text));
    CHECK(text == L"1;old4");
}

TEST_CASE(otherValuesSurviveEachWrite)
{
    CHECK(writeDwordValue(L"posX", 11));
    CHECK(writeDwordValue(L"posY", 22));
    CHECK(writeStringValue(L"FileTypeData0", L"1;Font Files (.fnt, .fon, .otf, .ttf)"));
    CHECK(writeDwordValue(L"posX", 33));

    std::uint32_t number = 0;
    CHECK(readDwordValue(L"posY", number));
    CHECK(number == 22);
    std::wstring text;
    CHECK(readStringValue(L"FileTypeData0", text));
    CHECK(text == L"1;Font Files (.fnt, .fon, .otf, .ttf)");
}

int main()
{
    IsolatedSettings isolated;
    return minitest::runAll("SettingsBackendTest");
}
