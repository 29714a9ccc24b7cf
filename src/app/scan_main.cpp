// tallyroot-scan: the scan engine on one folder, from the command line. Needs
// no display.

#include "platform/NativeText.h"
#include "scan/DiskUsageWorkerThread.h"
#include "scan/ScanComparison.h"
#include "scan/ScanFile.h"
#include "scan/ScanJsonWriter.h"
#include "scan/VolumeReconciliation.h"
#include "settings/Settings.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>

namespace {

ScanRequest requestFor(const QString& path, bool defaults, const QStringList& extraExclusions)
{
    Settings settings = defaults ? Settings::defaults() : Settings::load();
    for (const QString& folder : extraExclusions)
        settings.exclusions.append({true, folder});
    return ScanRequest::of(path, settings);
}

[[noreturn]] void fail(const QString& message)
{
    std::fprintf(stderr, "tallyroot-scan: %s\n", qPrintable(message));
    std::exit(1);
}

// A file is written beside its place and takes it only once whole, so that a
// failed write leaves the file that was there. What is not a file (a pipe, a
// terminal, /dev/null) is written into: taking its place would put a file
// where a device was. Checked before the scan, not after it.
std::unique_ptr<QFileDevice> openJson(const QString& name)
{
    const QFileInfo target(name);
    std::unique_ptr<QFileDevice> file;
    if (target.exists() && !target.isFile()) {
        file = std::make_unique<QFile>(name);
    } else {
        auto whole = std::make_unique<QSaveFile>(name);
        // A folder that takes no new files is written in place.
        whole->setDirectWriteFallback(true);
        file = std::move(whole);
    }
    if (!file->open(QIODevice::WriteOnly))
        fail("cannot write " + name);
    return file;
}

bool finishJson(QFileDevice& file, bool written)
{
    auto* whole = qobject_cast<QSaveFile*>(&file);
    if (!whole) {
        const bool flushed = file.flush();
        file.close();
        return written && flushed;
    }
    if (!written)
        whole->cancelWriting(); // commit() then takes the temporary file away
    return whole->commit() && written;
}

ScanRequest requestOf(const QCommandLineParser& parser, const QString& path)
{
    ScanRequest request = requestFor(path, parser.isSet("defaults"), parser.values("exclude"));
    if (parser.isSet("threads")) {
        bool number = false;
        request.readers = parser.value("threads").toInt(&number);
        if (!number || request.readers < 1)
            fail("--threads takes a whole number from 1 up");
    }
    return request;
}

ScanResult scanOf(ScanRequest request)
{
    DiskUsageWorkerThread worker(nullptr, std::move(request));
    worker.start();
    worker.wait();
    return worker.takeResult();
}

void writeJson(std::unique_ptr<QFileDevice> json, const QString& path, const ScanResult& result,
               int& status)
{
    if (json && !finishJson(*json, ScanJsonWriter(path, result).write(*json))) {
        std::fprintf(stderr, "tallyroot-scan: cannot write %s\n", qPrintable(json->fileName()));
        status = 1;
    }
}

[[noreturn]] void finish(int status)
{
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::fprintf(stderr, "tallyroot-scan: write error\n");
        status = 1;
    }
    // Freeing a large result item by item takes longer than the scan's last
    // second; the system takes the memory back at once.
    std::_Exit(status);
}

std::size_t topOf(const QCommandLineParser& parser)
{
    constexpr std::size_t standard = 20;
    if (!parser.isSet("top"))
        return standard;
    bool number = false;
    const int top = parser.value("top").toInt(&number);
    if (!number || top < 0)
        fail("--top takes a whole number from 0 up");
    return std::size_t(top);
}

QString signedNumber(std::int64_t number)
{
    return (number > 0 ? QStringLiteral("+") : QString()) + QString::number(number);
}

// One line a folder, its fields apart by tabs so that a path with spaces stays whole.
void printComparison(const ScanComparison& comparison, const QString& olderFile,
                     const QDateTime& olderScannedAt, std::size_t top)
{
    const ScanComparison::Change total = comparison.changeOf(0);
    QString since = olderFile;
    if (olderScannedAt.isValid())
        since += QStringLiteral(" (scanned %1)").arg(olderScannedAt.toString(Qt::ISODate));
    std::printf("%s: %s bytes, %s files since %s\n", qPrintable(comparison.newer().shownPath(0)),
                qPrintable(signedNumber(total.bytes)), qPrintable(signedNumber(total.files)),
                qPrintable(since));
    static const char* const words[] = {"same", "grown", "shrunk", "new"};
    for (ScanTree::Index folder : comparison.grownFolders(top)) {
        const ScanComparison::Change change = comparison.changeOf(folder);
        std::printf("%s\t%s\t%s\t%s\n", qPrintable(signedNumber(change.bytes)),
                    qPrintable(signedNumber(change.files)), words[int(change.status)],
                    qPrintable(comparison.newer().shownPath(folder)));
    }
}

// The older scan is read while the newer one is scanned or read.
[[noreturn]] void compare(const QCommandLineParser& parser, const QString& newer)
{
    const QString olderFile = parser.value("compare");
    const std::size_t top = topOf(parser);
    const bool folder = platform::DirectoryListing::isFolder(platform::toNative(newer));
    std::optional<ScanRequest> request;
    if (folder)
        request = requestOf(parser, newer);
    std::unique_ptr<QFileDevice> json =
        parser.isSet("json") ? openJson(parser.value("json")) : nullptr;
    ScanFile::Opened older;
    std::thread reading([&] { older = ScanFile::read(olderFile); });
    const ScanFile::Opened now =
        request ? ScanFile::Opened{scanOf(std::move(*request)), {}} : ScanFile::read(newer);
    reading.join();
    if (!older.error.isEmpty())
        fail(older.error);
    if (!now.error.isEmpty())
        fail(now.error);
    const ScanComparison comparison(older.result.tree, now.result.tree);
    printComparison(comparison, olderFile, older.result.scannedAt, top);
    int status = 0;
    writeJson(std::move(json), folder ? newer : now.result.tree->rootPath(), now.result, status);
    finish(status);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("tallyroot-scan");
    QCoreApplication::setApplicationVersion(TALLYROOT_VERSION);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Scans one folder with Tallyroot's scan engine and prints a summary line: folders\n"
        "(the scanned one included), files, bytes (every hard link), bytes on disk\n"
        "(blocks allocated, each hard-linked file once), entries and seconds, and how\n"
        "many folders could not be read. For the root of a volume a second line\n"
        "compares the scan with the space the volume says is used.\n"
        "With --compare, compares an older scan with a newer one and prints the total\n"
        "change, then the folders that grew most, one a line: the change in bytes and in\n"
        "files, a status (grown or new) and the path, apart by tabs.\n"
        "Exit status: 0 when the scan ran, 1 when the folder, a scan file or the JSON\n"
        "file is unusable, 2 on wrong usage.");
    // Answered here rather than by the parser, which on Windows shows them in
    // a message box when no console window is open (output to a pipe).
    const QCommandLineOption help({"h", "help"}, "Displays this help.");
    const QCommandLineOption version({"v", "version"}, "Displays the version.");
    parser.addOptions({help, version});
    parser.addOptions({
        {"compare",
         "Compare the scan in OLD (a file written by --json, plain or gzip) with the "
         "folder given, scanned now with these options, or with another scan file.",
         "OLD"},
        {"top", "With --compare, how many of the folders that grew most to list (default 20).",
         "N"},
        {"defaults", "Built-in file types, no exclusions, OneDrive included; the stored "
                     "settings are not read."},
        {"exclude", "Leave out a folder (repeatable).", "DIR"},
        {"json", "Write the whole result to FILE as JSON; with --compare, the newer scan's.",
         "FILE"},
        {"threads",
         QString("Threads that read folders ahead of the walk; 1 reads on the walk's own "
                 "thread. Default: chosen for the disk, %1 where seeks are slow (a spinning "
                 "disk), %2 elsewhere.")
             .arg(ScanRequest::spinningDiskReaders)
             .arg(ScanRequest::solidDiskReaders()),
         "N"},
    });
    parser.addPositionalArgument(
        "folder", "The folder to scan; with --compare, the newer scan: a folder or a scan file.");
    parser.process(platform::arguments(argc, argv));
    if (parser.isSet(version)) {
        std::printf("tallyroot-scan %s\n", TALLYROOT_VERSION);
        return 0;
    }
    if (parser.isSet(help)) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    if (parser.positionalArguments().size() != 1) {
        std::fprintf(stderr, "%s", qPrintable(parser.helpText()));
        return 2;
    }
    const QString path = parser.positionalArguments().constFirst();
    if (parser.isSet("compare"))
        compare(parser, path);
    if (!platform::DirectoryListing::isFolder(platform::toNative(path)))
        fail("not a folder: " + path);

    ScanRequest request = requestOf(parser, path);
    std::unique_ptr<QFileDevice> json =
        parser.isSet("json") ? openJson(parser.value("json")) : nullptr;

    QElapsedTimer timer;
    timer.start();
    const ScanResult result = scanOf(std::move(request));
    const double seconds = double(timer.nsecsElapsed()) / 1e9;

    std::printf("%s: %u folders, %u files, %llu bytes, %llu on disk, %d entries, %.3f seconds",
                qPrintable(path), result.totalFolders + 1, result.totalFiles,
                static_cast<unsigned long long>(result.totalSize),
                static_cast<unsigned long long>(result.totalOnDisk), result.itemsScanned, seconds);
    if (!result.unreadable.isEmpty())
        std::printf(", unreadable folders: %lld", static_cast<long long>(result.unreadable.size()));
    std::printf("\n");
    if (const auto volume = VolumeReconciliation::of(path, result))
        std::printf("%s\n", qPrintable(volume->text()));

    int status = 0;
    writeJson(std::move(json), path, result, status);
    finish(status);
}
