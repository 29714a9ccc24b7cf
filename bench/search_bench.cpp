// How long a search of a whole scan takes, as a user typing into the filter
// would wait for it: the folder is scanned once, then each query is run
// `runs` times and its median and range printed. Then the same wait on the
// search panel, offscreen: from a key typed into its filter to its rows shown
// (searched, sorted largest first and painted), for each key of a word typed
// one key at a time.
//
//   tallyroot-search-bench FOLDER
#include "results/SearchPanel.h"
#include "scan/DiskUsageWorkerThread.h"
#include "scan/TreeSearch.h"
#include "settings/Settings.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QTreeView>

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

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// From the filter's new text to the rows shown and painted.
double keystroke(SearchPanel& panel, QLineEdit& filter, const QString& text)
{
    QEventLoop loop;
    bool shown = false;
    const auto done = QObject::connect(&panel, &SearchPanel::resultsShown, &loop, [&] {
        shown = true;
        loop.quit();
    });
    QElapsedTimer timer;
    timer.start();
    filter.setText(text);
    if (!shown)
        loop.exec();
    QCoreApplication::processEvents(); // the paint
    QObject::disconnect(done);
    return double(timer.nsecsElapsed()) / 1e6;
}

void timeTyping(const ScanResult& result, const QString& word)
{
    SearchPanel panel;
    panel.resize(1200, 800);
    panel.show();
    panel.setTree(result.tree, {});
    auto* filter = panel.findChild<QLineEdit*>(QStringLiteral("searchEdit"));
    const auto keys = std::size_t(word.size());
    std::vector<std::vector<double>> milliseconds(keys);
    std::vector<int> rows(keys);
    for (int run = 0; run < runs; ++run) {
        filter->clear();
        for (std::size_t key = 0; key < keys; ++key) {
            const QString typed = word.left(qsizetype(key + 1));
            milliseconds[key].push_back(keystroke(panel, *filter, typed));
            rows[key] = panel.resultsView()->model()->rowCount();
        }
    }
    for (std::size_t key = 0; key < keys; ++key) {
        const QString typed = QStringLiteral("\"%1\"").arg(word.left(qsizetype(key + 1)));
        std::printf("panel key to rows %-17s %7.1f ms  %d rows\n", qPrintable(typed),
                    median(milliseconds[key]), rows[key]);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
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
        {"part of a name: f (nearly all)", {"f"}},
        {"part of a name: 12345", {"12345"}},
        {"wildcards: f1*.png", {"f1*.png"}},
        {"wildcards: *.tar.gz", {"*.tar.gz"}},
        {"expression: ^f9+\\.(md|avi)$", {"^f9+\\.(md|avi)$", true}},
        {"at least 1 TB: (any name)", {"", false, 1ull << 40}},
    };
    for (const Query& query : queries)
        timeQuery(*result.tree, query);
    timeTyping(result, QStringLiteral("f1234"));
    return 0;
}
