// How long a search of a whole scan takes, as a user typing into the filter
// would wait for it: the folder is scanned once, then each query is run
// `runs` times and its median and range printed.
//
//   tallyroot-search-bench FOLDER
#include "scan/DiskUsageWorkerThread.h"
#include "scan/TreeSearch.h"
#include "settings/Settings.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int runs = 5;

struct Query {
    const char* label;
    SearchQuery query;
};

void timeQuery(const ScanTree& tree, const Query& query)
{
    std::vector<double> milliseconds;
    std::size_t found = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        found = TreeSearch(query.query).find(tree).size();
        milliseconds.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("search %-28s %7.1f ms (%.1f-%.1f)  %zu found\n", query.label,
                milliseconds[runs / 2], milliseconds.front(), milliseconds.back(), found);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    DiskUsageWorkerThread worker(
        nullptr, ScanRequest::of(QString::fromLocal8Bit(argv[1]), Settings::defaults()));
    worker.start();
    worker.wait();
    const ScanResult result = worker.takeResult();
    std::printf("entries %zu\n", result.tree->size());
    const Query queries[] = {
        {"part of a name: 12345", {"12345"}},
        {"wildcards: f1*.png", {"f1*.png"}},
        {"wildcards: *.tar.gz", {"*.tar.gz"}},
        {"expression: ^f9+\\.(md|avi)$", {"^f9+\\.(md|avi)$", true}},
        {"at least 1 TB: (any name)", {"", false, 1ull << 40}},
    };
    for (const Query& query : queries)
        timeQuery(*result.tree, query);
    return 0;
}
