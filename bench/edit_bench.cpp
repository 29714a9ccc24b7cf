// How long the results take to follow a change made from them: the folder is
// scanned once, then each change is applied to the scan `runs` times (the
// tree copied and every figure counted again, as after a removal or a refresh)
// and its median and range printed; a refresh also reads its folder again.
//
//   tallyroot-edit-bench FOLDER
#include "scan/DiskUsageWorkerThread.h"
#include "scan/ScanEdit.h"
#include "settings/Settings.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

constexpr int runs = 3;

ScanResult scanOf(const QString& folder)
{
    DiskUsageWorkerThread worker(nullptr, ScanRequest::of(folder, Settings::defaults()));
    worker.start();
    worker.wait();
    return worker.takeResult();
}

void time(const char* label, const std::function<std::size_t()>& change)
{
    std::vector<double> milliseconds;
    std::size_t entries = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        entries = change();
        milliseconds.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("edit %-34s %7.1f ms (%.1f-%.1f)  %zu entries after\n", label,
                milliseconds[runs / 2], milliseconds.front(), milliseconds.back(), entries);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const ScanResult scan = scanOf(folder);
    const ScanTree& tree = *scan.tree;
    const std::vector<ScanTree::Index> largest = tree.largestChildren(0, 1);
    if (largest.empty())
        return 1;
    const ScanTree::Index top = largest.front();
    const ScanTree::Index file = tree.largestChildren(top, 1, true).empty()
                                     ? tree.node(top).firstChild
                                     : tree.largestChildren(top, 1, true).front();
    std::printf("entries %zu; the largest folder below holds %u files\n", tree.size(),
                tree.node(top).files);
    const auto apply = [&scan](const ScanEdit& edit) { return edit.applyTo(scan).tree->size(); };
    time("remove one file", [&] {
        ScanEdit edit;
        edit.remove(file);
        return apply(edit);
    });
    time("remove the largest folder", [&] {
        ScanEdit edit;
        edit.remove(top);
        return apply(edit);
    });
    time("refresh the largest folder (read+apply)", [&] {
        ScanEdit edit;
        edit.replace(top, scanOf(tree.path(top)).tree);
        return apply(edit);
    });
    return 0;
}
