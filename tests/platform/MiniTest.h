#pragma once

// A minimal test runner for the platform backends, which are built and tested
// without Qt (the Win32 one is cross-compiled and run under Wine).

#include <cstdio>
#include <vector>

namespace minitest {

struct Case {
    const char* name;
    void (*run)();
};

inline std::vector<Case>& cases()
{
    static std::vector<Case> all;
    return all;
}

inline int& failedChecks()
{
    static int count = 0;
    return count;
}

struct Registrar {
    Registrar(const char* name, void (*run)()) { cases().push_back({name, run}); }
};

inline void fail(const char* file, int line, const char* expression)
{
    std::printf("  check failed at %s:%d: %s\n", file, line, expression);
    ++failedChecks();
}

// Runs every registered case and ends with the "N passed, N failed" line.
inline int runAll(const char* suite)
{
    int passed = 0;
    int failed = 0;
    for (const Case& c : cases()) {
        const int before = failedChecks();
        c.run();
        const bool ok = failedChecks() == before;
        std::printf("%s   : %s::%s\n", ok ? "PASS" : "FAIL!", suite, c.name);
        ok ? ++passed : ++failed;
    }
    std::printf("%d passed, %d failed\n", passed, failed);
    std::fflush(stdout);
    return failed == 0 ? 0 : 1;
}

} // namespace minitest

#define TEST_CASE(name)                                                                            \
    static void name();                                                                            \
    static const minitest::Registrar name##Registrar(#name, &name);                                \
    static void name()

#define CHECK(expression)                                                                          \
    do {                                                                                           \
        if (!(expression))                                                                         \
            minitest::fail(__FILE__, __LINE__, #expression);                                       \
    } while (false)
