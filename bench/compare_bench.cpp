// How long comparing two scans takes in the engine alone: both scan files
// are read once, then the comparison is made `runs` times, and the folders
// that grew most picked from it as many times; medians and ranges printed.
//
//   tallyroot-compare-bench OLDER NEWER    (scan files, as tallyroot-scan --json writes them)
#include "scan/ScanComparison.h"
#include "scan/ScanFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr int runs = 3;

void time(const char* label, const std::function<void()>& work)
{
    std::vector<double> milliseconds;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        work();
        milliseconds.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("compare %-32s %8.1f ms (%.1f-%.1f)\n", label, milliseconds[runs / 2],
                milliseconds.front(), milliseconds.back());
}

ScanResult read(const char* file)
{
    ScanFile::Opened opened = ScanFile::read(QString::fromLocal8Bit(file));
    if (!opened.error.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(opened.error));
        std::exit(1);
    }
    return std::move(opened.result);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s OLDER NEWER\n", argv[0]);
        return 2;
    }
    QElapsedTimer reading;
    reading.start();
    const ScanResult older = read(argv[1]);
    const ScanResult newer = read(argv[2]);
    std::printf("compare read both files                  %8.1f ms (once)\n",
                double(reading.nsecsElapsed()) / 1e6);
    std::unique_ptr<ScanComparison> comparison;
    time("match the two trees",
         [&] { comparison = std::make_unique<ScanComparison>(older.tree, newer.tree); });
    std::size_t listed = 0;
    time("the 20 folders that grew most", [&] { listed = comparison->grownFolders(20).size(); });
    const ScanComparison::Change total = comparison->changeOf(0);
    std::printf("compare entries %zu and %zu; %lld bytes, %lld files; %zu folders listed; "
                "%zu bytes kept for the matches\n",
                older.tree->size(), newer.tree->size(), static_cast<long long>(total.bytes),
                static_cast<long long>(total.files), listed,
                newer.tree->size() * sizeof(ScanTree::Index));
    // The system takes the trees back at once.
    std::fflush(stdout);
    std::_Exit(0);
}
