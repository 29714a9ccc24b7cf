#include "ResultDetailsDialog.h"

#include "ResultsLog.h"
#include "desktop/ShellActions.h"
#include "platform/NativeText.h"
#include "platform/Shell.h"
#include "ui_ResultDetailsDialog.h"

#include <QHeaderView>

namespace {

enum Column { Name, Size, LastAccess, Path, RawSize, Index };

QStandardItem* valueCell(const QVariant& value)
{
    auto* cell = new QStandardItem;
    cell->setData(value, Qt::EditRole);
    return cell;
}

} // namespace

ResultDetailsDialog::ResultDetailsDialog(const QList<DiskUsageGlobal::TMainDataFile>& files,
                                         QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::ResultDetailsDialog>())
{
    ui->setupUi(this);
    model.setHorizontalHeaderLabels(
        {"Name", "Size", "Last Access Time", "Path", "Raw Size", "Index"});
    ui->dataFilesTreeView->setModel(&model);
    ui->dataFilesTreeView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ui->dataFilesTreeView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    ui->dataFilesTreeView->header()->setSectionsClickable(true);
    connect(ui->dataFilesTreeView->header(), &QHeaderView::sectionClicked, this,
            &ResultDetailsDialog::onSectionClicked);
    connect(ui->explorerButton, &QAbstractButton::clicked, this,
            &ResultDetailsDialog::onShowInFileManager);
    connect(ui->openFileButton, &QAbstractButton::clicked, this, &ResultDetailsDialog::onOpenFile);
    fill(files);
}

ResultDetailsDialog::~ResultDetailsDialog() = default;

void ResultDetailsDialog::setFiles(const QList<DiskUsageGlobal::TMainDataFile>& files)
{
    model.removeRows(0, model.rowCount());
    fill(files);
    model.sort(lastSort.first < 0 ? RawSize : lastSort.first, lastSort.second);
}

QTreeView* ResultDetailsDialog::filesView() const
{
    return ui->dataFilesTreeView;
}

QStringList ResultDetailsDialog::selectedPaths() const
{
    QModelIndexList rows = ui->dataFilesTreeView->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList paths;
    for (const QModelIndex& row : rows)
        paths << pathOf(row);
    return paths;
}

QString ResultDetailsDialog::pathOf(const QModelIndex& row)
{
    const QString folder = row.siblingAtColumn(Path).data().toString();
    return platform::childPath(folder, row.siblingAtColumn(Name).data().toString());
}

void ResultDetailsDialog::fill(const QList<DiskUsageGlobal::TMainDataFile>& files)
{
    for (const auto& file : files) {
        const QString fullPath = platform::childPath(file.filePath, file.fileName);
        qCDebug(lcResults).noquote() << "fullPath:" << fullPath;
        auto* name = new QStandardItem(file.fileName);
        name->setIcon(platform::smallFileIcon(fullPath));
        model.appendRow({name, new QStandardItem(file.sizeText),
                         new QStandardItem(file.lastAccessText), new QStandardItem(file.filePath),
                         valueCell(file.size), valueCell(file.index)});
    }
    QTreeView* view = ui->dataFilesTreeView;
    view->setColumnWidth(Name, 300);
    view->hideColumn(RawSize);
    view->hideColumn(Index);
    view->setColumnWidth(LastAccess, 200);
    model.sort(RawSize, Qt::DescendingOrder);
    if (model.rowCount() > 0) {
        view->setCurrentIndex(model.index(0, 0));
    } else {
        ui->explorerButton->setEnabled(false);
        ui->openFileButton->setEnabled(false);
    }
}

void ResultDetailsDialog::onSectionClicked(int index)
{
    descending = !descending;
    // Sizes sort by their value, not by their text.
    const int column = index == Size ? RawSize : index;
    lastSort = {column, descending ? Qt::DescendingOrder : Qt::AscendingOrder};
    model.sort(lastSort.first, lastSort.second);
}

QString ResultDetailsDialog::selectedPath() const
{
    const QModelIndexList selected = ui->dataFilesTreeView->selectionModel()->selectedIndexes();
    if (selected.isEmpty())
        return {};
    const QModelIndex row = selected.first();
    qCDebug(lcResults) << "Length:" << row.siblingAtColumn(Path).data().toString().size();
    return pathOf(row);
}

void ResultDetailsDialog::onShowInFileManager()
{
    const QString path = selectedPath();
    if (!path.isEmpty())
        ShellActions::showInExplorer(path, this);
}

void ResultDetailsDialog::onOpenFile()
{
    const QString path = selectedPath();
    qCDebug(lcResults).noquote() << "open file path:" << path;
    if (!path.isEmpty())
        ShellActions::openFile(path, this);
}
