#include "DiskUsageWorkerThread.h"

#include "ReportPreparation.h"
#include "platform/DirectoryListing.h"
#include "platform/NativeText.h"
#include "platform/Shell.h"
#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardItemModel>

Q_LOGGING_CATEGORY(lcWorker, "tallyroot.scan", QtInfoMsg)

using DiskUsageGlobal::TFileInfo;
using DiskUsageGlobal::TMainDataFile;
using DiskUsageGlobal::TMaxDataItem;

namespace {

enum Column { Name, SizeText, Files, Folders, Size, Path, Percentage, MaxData, Index };
constexpr int columnCount = 9;

} // namespace

// One folder of the walk, from its listing until it is finished.
struct DiskUsageWorkerThread::Folder {
    platform::DirectoryListing listing;
    platform::NativeString name;
    QString path;
    int depth = 0;
    // The row's cells; the root row's last two are made when they are set.
    std::array<QStandardItem*, columnCount> cells{};
    Totals totals;
    QList<TMaxDataItem> summary;
    QList<TMaxDataItem> finishedSubfolders;
};

DiskUsageWorkerThread::DiskUsageWorkerThread(QObject* parent, const QString& scanPath)
    : QThread(parent)
    , scanPath(scanPath)
    // Icons are made here, on the GUI thread, once per scan.
    , folderIcon(platform::folderIcon())
    , cloudFolderIcon(QStringLiteral(":/resources/images/genericCloudFolder.png"))
{
    DiskUsageGlobal::registerMetaTypes();
}

DiskUsageWorkerThread::~DiskUsageWorkerThread() = default;

void DiskUsageWorkerThread::setTargets(const ScanTargets& scanTargets)
{
    targets = scanTargets;
}

void DiskUsageWorkerThread::setCancel(bool value)
{
    cancel.store(value, std::memory_order_relaxed);
}

void DiskUsageWorkerThread::run()
{
    oneDrivePath = SettingsStore::oneDrivePath();
    excludeOneDrive = ExclusionSettings::excludeOneDriveFolder() != 0;
    exclusions.clear();
    for (const ExcludeEntry& entry : ExclusionSettings::excludeList()) {
        if (entry.enable)
            exclusions.append(entry);
    }
    QList<FileTypeCategory>& catalogue = FileTypeCatalogue::instance();
    matcher.emplace(catalogue);
    targets.dataFiles->resize(catalogue.size());

    ReportPreparation report(catalogue, cancel);
    report.addCategoryRows();
    sizeFloor = 0;
    for (FileTypeCategory& category : catalogue)
        category.totalSize = 0;

    QString name = QFileInfo(scanPath).fileName();
    if (name.isEmpty())
        name = scanPath;
    qCDebug(lcWorker).noquote() << "folderName:" << name;
    buildRootRow(name);

    emit updateTotalSubFolder((cancelled() ? 0 : countRootSubfolders()) + 1);
    totals = {};
    QStandardItem* rootCell = targets.rootRow->constFirst();
    if (!folderIcon.isNull())
        rootCell->setIcon(iconFor(scanPath));
    const auto rootCells = walk(totals);
    report.prepareReport(rootCell, totals.size);

    // Everything was built apart from the models, so no model signal fired
    // from this thread; the models take it all in one step.
    targets.folderModel->appendRow(QList<QStandardItem*>(rootCells.begin(), rootCells.end()));
    report.publishCategoryRows(targets.dataFilesModel);
    emit resultReady();
}

void DiskUsageWorkerThread::buildRootRow(const QString& name)
{
    *targets.rootRow = {new QStandardItem(name),
                        new QStandardItem(QStringLiteral("Column 2 Text")),
                        new QStandardItem,
                        new QStandardItem,
                        new QStandardItem(QString()),
                        new QStandardItem(QDir::toNativeSeparators(scanPath)),
                        new QStandardItem};
    targets.rootRow->at(Percentage)->setData(100.0, Qt::EditRole);
}

int DiskUsageWorkerThread::countRootSubfolders() const
{
    auto listing = platform::DirectoryListing::open(platform::toNative(scanPath));
    int count = 0;
    platform::DirectoryEntry entry;
    while (listing.next(entry)) {
        if (entry.isDirectory)
            ++count;
    }
    return count;
}

// Depth-first, with the open folders on a stack of their own rather than the
// thread's, so that no tree is too deep to walk.
std::array<QStandardItem*, 9> DiskUsageWorkerThread::walk(Totals& result)
{
    std::vector<Folder> stack;
    stack.push_back(enter(nullptr, {}, scanPath, 0));
    std::copy(targets.rootRow->cbegin(), targets.rootRow->cend(), stack.back().cells.begin());

    platform::DirectoryEntry entry;
    while (!stack.empty()) {
        if (!cancelled() && stack.back().listing.next(entry)) {
            addEntry(stack, entry);
            continue;
        }
        Folder done = std::move(stack.back());
        stack.pop_back();
        finish(done);
        if (stack.empty()) {
            result = done.totals;
            return done.cells;
        }
        Folder& parent = stack.back();
        parent.finishedSubfolders.append(
            {std::move(done.name), qint64(done.totals.size), TMaxDataItem::Folder});
        parent.totals.size += done.totals.size;
        parent.totals.files += done.totals.files;
        parent.totals.folders += done.totals.folders;
    }
    Q_UNREACHABLE();
}

DiskUsageWorkerThread::Folder DiskUsageWorkerThread::enter(const platform::DirectoryListing* parent,
                                                           const platform::NativeString& name,
                                                           QString path, int depth)
{
    if (depth == 1) {
        emit updatePath(path);
        emit updateScanProgress();
    }
    Folder folder;
    folder.summary.reserve(DiskUsageGlobal::childSummaryLimit + 1);
    folder.listing = parent ? parent->openChild(name)
                            : platform::DirectoryListing::open(platform::toNative(path));
    folder.path = std::move(path);
    folder.depth = depth;
    return folder;
}

void DiskUsageWorkerThread::addEntry(std::vector<Folder>& stack, platform::DirectoryEntry& entry)
{
    emit updateTotalItemScan(++itemCount);
    Folder& folder = stack.back();
    if (!entry.isDirectory) {
        addFile(folder, entry);
        return;
    }
    QString name = platform::toQString(entry.name);
    QString path = platform::childPath(folder.path, name);
    if (isExcluded(path))
        return;
    const auto cells = appendFolderRow(folder.cells[Name], name, path);
    ++folder.totals.folders;
    if (cancelled()) {
        // A folder met after a cancel keeps its placeholder row.
        folder.finishedSubfolders.append({entry.name, 0, TMaxDataItem::Folder});
        return;
    }
    Folder child = enter(&folder.listing, entry.name, std::move(path), folder.depth + 1);
    child.name = entry.name;
    child.cells = cells;
    stack.push_back(std::move(child)); // invalidates `folder`
}

void DiskUsageWorkerThread::addFile(Folder& folder, const platform::DirectoryEntry& entry)
{
    ++folder.totals.files;
    folder.totals.size += entry.size;
    const auto size = static_cast<qint64>(entry.size);
    DiskUsageGlobal::offerRanked(folder.summary, size, DiskUsageGlobal::childSummaryLimit, [&] {
        return TMaxDataItem{entry.name, size, TMaxDataItem::File};
    });

    QList<TFileInfo>& biggest = *targets.biggestFiles;
    if (entry.size > sizeFloor) {
        const bool kept = DiskUsageGlobal::offerRanked(
            biggest, entry.size, DiskUsageGlobal::biggestFilesLimit, [&] {
                const QString path =
                    platform::childPath(folder.path, platform::toQString(entry.name));
                return TFileInfo{{}, {}, path, entry.size, entry.lastAccessTime};
            });
        // The floor rises only when a full list turned a file away, so it can
        // lag behind the 20th entry; the list itself stays right.
        if (!kept && biggest.size() == DiskUsageGlobal::biggestFilesLimit)
            sizeFloor = biggest.constLast().size;
    }
    addDataFile(folder.path, entry);
}

void DiskUsageWorkerThread::addDataFile(const QString& folderPath,
                                        const platform::DirectoryEntry& entry)
{
    const CategoryMatcher::Indexes* categories = matcher->match(entry.name);
    if (!categories)
        return;
    QList<FileTypeCategory>& catalogue = FileTypeCatalogue::instance();
    const auto size = static_cast<qint64>(entry.size);
    for (int category : *categories) {
        const int index = dataFileIndex++;
        DiskUsageGlobal::offerRanked(
            (*targets.dataFiles)[category], size, DiskUsageGlobal::dataFilesLimit, [&] {
                const QString name = platform::toQString(entry.name);
                return TMainDataFile{name,
                                     DiskUsageGlobal::sizeText(double(size)),
                                     DiskUsageGlobal::lastAccessText(entry.lastAccessTime),
                                     QFileInfo(platform::childPath(folderPath, name)).path(),
                                     size,
                                     index};
            });
        catalogue[category].totalSize += size;
    }
}

// Plain string prefixes, compared with case: an excluded D:\Temp also leaves
// out D:\Temporary.
bool DiskUsageWorkerThread::isExcluded(const QString& path) const
{
    if (excludeOneDrive && !oneDrivePath.isEmpty() && path.startsWith(oneDrivePath))
        return true;
    for (const ExcludeEntry& entry : exclusions) {
        if (path.startsWith(entry.path)) {
            qCDebug(lcWorker).noquote() << "exclude path 1:" << entry.path;
            return true;
        }
    }
    return false;
}

std::array<QStandardItem*, 9> DiskUsageWorkerThread::appendFolderRow(QStandardItem* parent,
                                                                     const QString& name,
                                                                     const QString& path) const
{
    std::array<QStandardItem*, columnCount> cells{};
    for (auto& cell : cells)
        cell = new QStandardItem;
    cells[Name]->setText(name);
    cells[Name]->setIcon(iconFor(path));
    cells[SizeText]->setText(QStringLiteral("Column 2 Text"));
    cells[Path]->setText(path);
    parent->appendRow(QList<QStandardItem*>(cells.begin(), cells.end()));
    return cells;
}

const QIcon& DiskUsageWorkerThread::iconFor(const QString& path) const
{
    const bool inOneDrive = !oneDrivePath.isEmpty() && path.startsWith(oneDrivePath);
    return inOneDrive ? cloudFolderIcon : folderIcon;
}

void DiskUsageWorkerThread::finish(Folder& folder)
{
    const auto set = [&folder](int column, const QVariant& value) {
        QStandardItem*& cell = folder.cells[column];
        if (!cell)
            cell = new QStandardItem; // the root row's last cells come with their values
        cell->setData(value, Qt::EditRole);
    };
    set(Size, QVariant::fromValue<qulonglong>(folder.totals.size));
    set(SizeText, DiskUsageGlobal::sizeText(double(folder.totals.size)));
    set(Files, int(folder.totals.files));
    set(Folders, int(folder.totals.folders));
    set(Index, folderIndex++);
    for (const TMaxDataItem& subfolder : folder.finishedSubfolders) {
        DiskUsageGlobal::offerRanked(folder.summary, subfolder.size,
                                     DiskUsageGlobal::childSummaryLimit,
                                     [&subfolder] { return subfolder; });
    }
    set(MaxData, DiskUsageGlobal::childSummary(folder.summary, folder.cells[Name]->rowCount()));
}
