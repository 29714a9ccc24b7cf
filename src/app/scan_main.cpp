// tallyroot-scan: the scan engine on one folder, from the command line.

#include "ScanJsonWriter.h"
#include "scan/DiskUsageWorkerThread.h"
#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardItemModel>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

void loadSettings(bool defaults, const QStringList& extraExclusions)
{
    QList<FileTypeCategory>& catalogue = FileTypeCatalogue::instance();
    if (defaults || !FileTypeCatalogue::load(catalogue))
        FileTypeCatalogue::fillDefaults(catalogue);
    if (defaults) {
        ExclusionSettings::excludeList().clear();
        ExclusionSettings::excludeOneDriveFolder() = 0;
    } else {
        ExclusionSettings::load();
    }
    for (const QString& folder : extraExclusions)
        ExclusionSettings::excludeList().append({true, folder});
}

bool writeJson(const QString& fileName, const QJsonDocument& document)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(document.toJson(QJsonDocument::Compact)) >= 0 && file.flush();
}

} // namespace

int main(int argc, char* argv[])
{
    // The scan needs no screen; icons are made off-screen.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName("tallyroot-scan");

    QCommandLineParser parser;
    parser.setApplicationDescription("Scans one folder with Tallyroot's scan engine and prints "
                                     "a summary: folders (the scanned one included), files, "
                                     "bytes, entries and seconds.");
    parser.addHelpOption();
    parser.addOptions({
        {"defaults", "Built-in file types, no exclusions, OneDrive included; the stored "
                     "settings are not read."},
        {"exclude", "Leave out a folder (repeatable).", "DIR"},
        {"json", "Write the whole result to FILE as JSON.", "FILE"},
    });
    parser.addPositionalArgument("folder", "The folder to scan.");
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const QString path = parser.positionalArguments().constFirst();
    if (!QFileInfo(path).isDir()) {
        std::fprintf(stderr, "tallyroot-scan: not a folder: %s\n", qPrintable(path));
        return 1;
    }
    loadSettings(parser.isSet("defaults"), parser.values("exclude"));

    QStandardItemModel folderModel;
    QStandardItemModel dataFilesModel;
    QList<QStandardItem*> rootRow;
    QList<DiskUsageGlobal::TFileInfo> biggestFiles;
    QList<QList<DiskUsageGlobal::TMainDataFile>> dataFiles;
    const ScanTargets targets{&folderModel, &dataFilesModel, &rootRow, &biggestFiles, &dataFiles};

    auto* worker = new DiskUsageWorkerThread(&app, path);
    worker->setTargets(targets);
    // Counted where they are emitted: nothing waits in the event queue.
    std::atomic<int> items{0};
    std::atomic<int> subFolders{0};
    QObject::connect(
        worker, &DiskUsageWorkerThread::updateTotalItemScan, worker,
        [&items](int total) { items.store(total, std::memory_order_relaxed); },
        Qt::DirectConnection);
    QObject::connect(
        worker, &DiskUsageWorkerThread::updateTotalSubFolder, worker,
        [&subFolders](int total) { subFolders.store(total); }, Qt::DirectConnection);
    QObject::connect(worker, &DiskUsageWorkerThread::finished, &app, &QCoreApplication::quit);

    QElapsedTimer timer;
    timer.start();
    worker->start(QThread::InheritPriority);
    QApplication::exec();
    const double seconds = double(timer.nsecsElapsed()) / 1e9;

    const int folders = folderModel.item(0, 3)->data(Qt::DisplayRole).toInt() + 1;
    std::printf("%s: %d folders, %d files, %llu bytes, %d entries, %.3f seconds\n",
                qPrintable(path), folders, folderModel.item(0, 2)->data(Qt::DisplayRole).toInt(),
                folderModel.item(0, 4)->data(Qt::DisplayRole).toULongLong(), items.load(), seconds);

    int status = 0;
    if (parser.isSet("json")) {
        ScanJsonWriter writer(path, targets);
        writer.setCounts(items.load(), subFolders.load());
        if (!writeJson(parser.value("json"), writer.document())) {
            std::fprintf(stderr, "tallyroot-scan: cannot write %s\n",
                         qPrintable(parser.value("json")));
            status = 1;
        }
    }
    // Freeing a large result item by item takes longer than the scan's last
    // second; the system takes the memory back at once.
    std::fflush(stdout);
    std::_Exit(status);
}
