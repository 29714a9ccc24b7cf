# The platform tests: the first list runs against every backend, the second
# only against the Win32 one.
set(TALLYROOT_PLATFORM_TESTS SettingsBackendTest DirectoryListingTest VolumesTest)
set(VolumesTest_SOURCES VolumesTest.cpp)
set(DirectoryListingTest_SOURCES DirectoryListingTest.cpp)
set(SettingsBackendTest_SOURCES SettingsBackendTest.cpp)
set(TALLYROOT_PLATFORM_WIN32_TESTS RegistryTest)
set(RegistryTest_SOURCES win32/RegistryTest.cpp)
