#include "DiskUsageWorkerThread.h"

#include "FolderValueCell.h"
#include "ReportPreparation.h"
#include "platform/NativeText.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardItem>

Q_LOGGING_CATEGORY(lcWorker, "tallyroot.scan", QtInfoMsg)

using DiskUsageGlobal::TFileInfo;
using DiskUsageGlobal::TMainDataFile;
using DiskUsageGlobal::TMaxDataItem;
using namespace FolderColumn;

// One folder of the walk, from the moment it is entered until it is finished.
struct DiskUsageWorkerThread::Frame {
    FolderReadAhead::FolderPtr folder;
    std::size_t nextEntry = 0;
    std::size_t nextSubfolder = 0;
    int depth = 0;
    // The row's cells.
    Cells cells{};
    Totals totals;
    QList<TMaxDataItem> summary;
    QList<TMaxDataItem> finishedSubfolders;
};

DiskUsageWorkerThread::DiskUsageWorkerThread(QObject* parent, ScanRequest scanRequest)
    : QThread(parent)
    , request(std::move(scanRequest))
{
    DiskUsageGlobal::registerMetaTypes();
}

DiskUsageWorkerThread::~DiskUsageWorkerThread() = default;

void DiskUsageWorkerThread::setCancel(bool value)
{
    cancel.store(value, std::memory_order_relaxed);
}

ScanResult DiskUsageWorkerThread::takeResult()
{
    return std::move(result);
}

void DiskUsageWorkerThread::run()
{
    result.categories = request.catalogue;
    matcher.emplace(result.categories);
    result.dataFiles.resize(result.categories.size());
    ReportPreparation report(result.categories, request.categoryIcons, cancel);
    report.addCategoryRows();
    sizeFloor = 0;
    linkedFilesSeen.clear();
    for (FileTypeCategory& category : result.categories)
        category.totalSize = 0;

    QString name = QFileInfo(request.folder).fileName();
    if (name.isEmpty())
        name = request.folder;
    qCDebug(lcWorker).noquote() << "folderName:" << name;
    Cells cells{};
    buildRootRow(name, cells);
    {
        FolderReadAhead readAhead(request.folder, request.readers,
                                  [this](const QString& path) { return isExcluded(path); });
        walk(readAhead, cells);
    }
    report.prepareReport(cells[Name], result.totalSize);
    result.rootRow = QList<QStandardItem*>(cells.begin(), cells.end());
    result.categoryRows = report.takeCategoryRows();
    result.itemsScanned = items;
    emit resultReady();
}

void DiskUsageWorkerThread::buildRootRow(const QString& name, Cells& cells) const
{
    cells = {new QStandardItem(name),
             new FolderValueCell(QStringLiteral("Column 2 Text")),
             new FolderValueCell,
             new FolderValueCell,
             new FolderValueCell(QString()),
             new FolderValueCell(QDir::toNativeSeparators(request.folder)),
             new FolderValueCell(100.0),
             new FolderValueCell,
             new FolderValueCell,
             new FolderValueCell};
    if (!request.folderIcon.isNull())
        cells[Name]->setIcon(iconFor(request.folder));
}

// Depth-first, with the open folders on a stack of their own rather than the
// thread's, so that no tree is too deep to walk.
void DiskUsageWorkerThread::walk(FolderReadAhead& readAhead, Cells& rootCells)
{
    std::vector<Frame> stack;
    stack.push_back(enter(readAhead, readAhead.root(), 0));
    // The scanned folder's own listing gives the count of its subfolders.
    const int subfolders = cancelled() ? 0 : int(stack.back().folder->subfolders.size());
    result.totalSubFolders = subfolders + 1;
    emit updateTotalSubFolder(result.totalSubFolders);
    stack.back().cells = rootCells;

    while (!stack.empty()) {
        Frame& top = stack.back();
        if (!cancelled() && top.nextEntry < top.folder->entries.size()) {
            addEntry(readAhead, stack);
            continue;
        }
        Frame done = std::move(top);
        stack.pop_back();
        readAhead.release(*done.folder);
        finish(done);
        if (stack.empty()) {
            rootCells = done.cells;
            result.totalSize = done.totals.size;
            result.totalOnDisk = done.totals.onDisk;
            result.totalFiles = done.totals.files;
            result.totalFolders = done.totals.folders;
            return;
        }
        Frame& parent = stack.back();
        parent.finishedSubfolders.append(
            {std::move(done.folder->name), qint64(done.totals.size), TMaxDataItem::Folder});
        parent.totals.size += done.totals.size;
        parent.totals.onDisk += done.totals.onDisk;
        parent.totals.files += done.totals.files;
        parent.totals.folders += done.totals.folders;
    }
}

DiskUsageWorkerThread::Frame DiskUsageWorkerThread::enter(FolderReadAhead& readAhead,
                                                          FolderReadAhead::FolderPtr folder,
                                                          int depth)
{
    if (depth == 1) {
        emit updatePath(folder->path);
        emit updateScanProgress();
    }
    readAhead.take(*folder);
    if (folder->failed)
        result.unreadable.append(folder->path);
    if (folder->elsewhere)
        result.elsewhere.append(folder->path);
    Frame frame;
    frame.totals.onDisk = folder->allocated;
    frame.folder = std::move(folder);
    frame.depth = depth;
    frame.summary.reserve(DiskUsageGlobal::childSummaryLimit + 1);
    return frame;
}

void DiskUsageWorkerThread::addEntry(FolderReadAhead& readAhead, std::vector<Frame>& stack)
{
    itemCount.store(++items, std::memory_order_relaxed);
    emit updateTotalItemScan(items);
    Frame& frame = stack.back();
    const FolderReadAhead::Entry& entry = frame.folder->entries[frame.nextEntry++];
    if (!entry.isDirectory) {
        addFile(frame, entry);
        return;
    }
    FolderReadAhead::FolderPtr child = std::move(frame.folder->subfolders[frame.nextSubfolder++]);
    if (child->excluded) {
        ++result.excludedFolders;
        if (lcWorker().isDebugEnabled() && !inExcludedOneDrive(child->path))
            qCDebug(lcWorker).noquote() << "exclude path 1:" << excludingEntry(child->path)->path;
        return;
    }
    const Cells cells = appendFolderRow(frame.cells[Name], child->nameText, child->path);
    ++frame.totals.folders;
    if (cancelled()) {
        // A folder met after a cancel keeps its placeholder row.
        frame.finishedSubfolders.append({child->name, 0, TMaxDataItem::Folder});
        return;
    }
    Frame next = enter(readAhead, std::move(child), frame.depth + 1);
    next.cells = cells;
    stack.push_back(std::move(next)); // invalidates `frame`
}

void DiskUsageWorkerThread::addFile(Frame& frame, const FolderReadAhead::Entry& entry)
{
    const platform::NativeStringView name = frame.folder->nameOf(entry);
    ++frame.totals.files;
    frame.totals.size += entry.size;
    if (entry.linkedFile == 0 || linkedFilesSeen.insert(entry.linkedFile).second)
        frame.totals.onDisk += entry.allocated;
    const auto size = static_cast<qint64>(entry.size);
    DiskUsageGlobal::offerRanked(frame.summary, size, DiskUsageGlobal::childSummaryLimit, [&] {
        return TMaxDataItem{platform::NativeString(name), size, TMaxDataItem::File};
    });

    QList<TFileInfo>& biggest = result.biggestFiles;
    if (entry.size > sizeFloor) {
        const bool kept = DiskUsageGlobal::offerRanked(
            biggest, entry.size, DiskUsageGlobal::biggestFilesLimit, [&] {
                const QString path = platform::childPath(
                    frame.folder->path, platform::toQString(platform::NativeString(name)));
                return TFileInfo{{}, {}, path, entry.size, entry.lastAccessTime, entry.allocated};
            });
        // The floor rises only when a full list turned a file away, so it can
        // lag behind the 20th entry; the list itself stays right.
        if (!kept && biggest.size() == DiskUsageGlobal::biggestFilesLimit)
            sizeFloor = biggest.constLast().size;
    }
    addDataFile(frame.folder->path, name, entry);
}

void DiskUsageWorkerThread::addDataFile(const QString& folderPath, platform::NativeStringView name,
                                        const FolderReadAhead::Entry& entry)
{
    const CategoryMatcher::Indexes* categories = matcher->match(name);
    if (!categories)
        return;
    const auto size = static_cast<qint64>(entry.size);
    for (int category : *categories) {
        const int index = dataFileIndex++;
        DiskUsageGlobal::offerRanked(
            result.dataFiles[category], size, DiskUsageGlobal::dataFilesLimit, [&] {
                const QString fileName = platform::toQString(platform::NativeString(name));
                return TMainDataFile{fileName,
                                     DiskUsageGlobal::sizeText(double(size)),
                                     DiskUsageGlobal::lastAccessText(entry.lastAccessTime),
                                     QFileInfo(platform::childPath(folderPath, fileName)).path(),
                                     size,
                                     index};
            });
        result.categories[category].totalSize += size;
    }
}

// Plain string prefixes, compared with case: an excluded D:\Temp also leaves
// out D:\Temporary. Called from the reader threads as well: it reads only the
// request.
bool DiskUsageWorkerThread::isExcluded(const QString& path) const
{
    return inExcludedOneDrive(path) || excludingEntry(path);
}

bool DiskUsageWorkerThread::inExcludedOneDrive(const QString& path) const
{
    const QString& oneDrive = request.oneDrivePath;
    return request.excludeOneDrive && !oneDrive.isEmpty() && path.startsWith(oneDrive);
}

const ExcludeEntry* DiskUsageWorkerThread::excludingEntry(const QString& path) const
{
    for (const ExcludeEntry& entry : request.exclusions) {
        if (path.startsWith(entry.path))
            return &entry;
    }
    return nullptr;
}

DiskUsageWorkerThread::Cells DiskUsageWorkerThread::appendFolderRow(QStandardItem* parent,
                                                                    const QString& name,
                                                                    const QString& path) const
{
    static const QVariant placeholder = QStringLiteral("Column 2 Text");
    Cells cells{};
    cells[Name] = new QStandardItem(iconFor(path), name);
    for (int column = SizeText; column < Count; ++column)
        cells[column] = new FolderValueCell;
    static_cast<FolderValueCell*>(cells[SizeText])->setValue(placeholder);
    static_cast<FolderValueCell*>(cells[Path])->setValue(path);
    parent->appendRow(QList<QStandardItem*>(cells.begin(), cells.end()));
    return cells;
}

const QIcon& DiskUsageWorkerThread::iconFor(const QString& path) const
{
    const QString& oneDrive = request.oneDrivePath;
    const bool inOneDrive = !oneDrive.isEmpty() && path.startsWith(oneDrive);
    return inOneDrive ? request.cloudFolderIcon : request.folderIcon;
}

void DiskUsageWorkerThread::finish(Frame& frame)
{
    const auto set = [&frame](int column, QVariant value) {
        static_cast<FolderValueCell*>(frame.cells[column])->setValue(std::move(value));
    };
    set(Size, QVariant::fromValue<qulonglong>(frame.totals.size));
    set(OnDisk, QVariant::fromValue<qulonglong>(frame.totals.onDisk));
    set(SizeText, DiskUsageGlobal::sizeText(double(frame.totals.size)));
    set(Files, int(frame.totals.files));
    set(Folders, int(frame.totals.folders));
    set(Index, folderIndex++);
    for (const TMaxDataItem& subfolder : std::as_const(frame.finishedSubfolders)) {
        DiskUsageGlobal::offerRanked(frame.summary, subfolder.size,
                                     DiskUsageGlobal::childSummaryLimit,
                                     [&subfolder] { return subfolder; });
    }
    set(MaxData, DiskUsageGlobal::childSummary(frame.summary, frame.cells[Name]->rowCount()));
}
