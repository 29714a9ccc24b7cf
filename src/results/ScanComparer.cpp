#include "ScanComparer.h"

#include "scan/ScanFile.h"

#include <QDir>
#include <QThreadPool>

// Runs on a pool thread, on what it was given: the older scan is read from
// its file unless it was read before.
struct ScanComparer::Job {
    QString file;
    QString folder;
    std::shared_ptr<const ScanTree> older;
    std::shared_ptr<const ScanTree> newer;
    std::shared_ptr<std::atomic<bool>> cancel;
    std::uint64_t generation = 0;

    QDateTime scannedAt;
    std::shared_ptr<const ScanComparison> comparison;
    QString error;

    void run();

private:
    bool read();
};

void ScanComparer::Job::run()
{
    if (!older && !read())
        return;
    comparison = std::make_shared<const ScanComparison>(older, newer);
}

// A scan of another folder is refused here, so that its tree is freed here too.
bool ScanComparer::Job::read()
{
    ScanFile::Opened opened = ScanFile::read(file, cancel.get());
    if (!opened.error.isEmpty()) {
        error = opened.error;
        return false;
    }
    const QString scanned = opened.result.tree->rootPath();
    if (!sameFolder(scanned, folder)) {
        error = QStringLiteral("%1 is a scan of %2, not of %3, the folder shown here.")
                    .arg(QDir::toNativeSeparators(file), QDir::toNativeSeparators(scanned),
                         QDir::toNativeSeparators(folder));
        return false;
    }
    older = std::move(opened.result.tree);
    scannedAt = opened.result.scannedAt;
    return true;
}

ScanComparer::ScanComparer(QObject* parent)
    : QObject(parent)
    , handOff(this)
{}

ScanComparer::~ScanComparer()
{
    if (cancel)
        cancel->store(true);
}

void ScanComparer::compareWith(const QString& olderFile, const ScanResult& shown,
                               const QString& shownFolder)
{
    letGo();
    if (!shown.tree)
        return;
    file = olderFile;
    folder = shownFolder;
    shownTree = shown.tree;
    cancel = std::make_shared<std::atomic<bool>>(false);
    auto job = std::make_shared<Job>();
    job->file = file;
    job->folder = folder;
    job->newer = shownTree;
    job->cancel = cancel;
    start(std::move(job));
}

void ScanComparer::follow(const ScanResult& shown)
{
    shownTree = shown.tree;
    current.reset();
    compareAgain();
}

// A job under way finds the scan changed when it is done, and starts again.
void ScanComparer::compareAgain()
{
    if (!isComparing() || running || !shownTree)
        return;
    auto job = std::make_shared<Job>();
    job->older = older;
    job->newer = shownTree;
    start(std::move(job));
}

void ScanComparer::stop()
{
    letGo();
}

void ScanComparer::letGo()
{
    ++generation;
    if (cancel)
        cancel->store(true);
    cancel.reset();
    file.clear();
    folder.clear();
    scannedAt = {};
    older.reset();
    shownTree.reset();
    current.reset();
    running = false;
}

void ScanComparer::start(std::shared_ptr<Job> job)
{
    running = true;
    job->generation = generation;
    QThreadPool::globalInstance()->start([job = std::move(job), to = handOff.sender()] {
        job->run();
        to.send([job](ScanComparer* comparer) { comparer->takeJob(job); });
    });
}

void ScanComparer::takeJob(const std::shared_ptr<Job>& done)
{
    if (done->generation != generation)
        return;
    running = false;
    if (!done->error.isEmpty()) {
        letGo();
        emit failed(done->error);
        return;
    }
    if (!older) {
        older = done->older;
        scannedAt = done->scannedAt;
    }
    if (done->comparison->newerTree() != shownTree)
        return compareAgain();
    current = done->comparison;
    emit compared();
}

bool ScanComparer::sameFolder(const QString& a, const QString& b)
{
    const auto clean = [](const QString& path) {
        return QDir::cleanPath(QDir::fromNativeSeparators(path));
    };
#ifdef Q_OS_WIN
    constexpr Qt::CaseSensitivity names = Qt::CaseInsensitive;
#else
    constexpr Qt::CaseSensitivity names = Qt::CaseSensitive;
#endif
    return clean(a).compare(clean(b), names) == 0;
}
