#include "ResultDetailsDialog.h"

#include "ShellActions.h"
#include "ui_ResultDetailsDialog.h"

#include <QDir>
#include <QHeaderView>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcDetails, "tallyroot.details", QtInfoMsg)

namespace {

enum Column { Name, Size, LastAccess, Path, RawSize, Index };

QStandardItem* valueCell(const QVariant& value)
{
    auto* cell = new QStandardItem;
    cell->setData(value, Qt::EditRole);
    return cell;
}

} // namespace

ResultDetailsDialog::ResultDetailsDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::ResultDetailsDialog>())
{
    ui->setupUi(this);
    model.setHorizontalHeaderLabels(
        {"Name", "Size", "Last Access Time", "Path", "Raw Size", "Index"});
    ui->dataFilesTreeView->setModel(&model);
    ui->dataFilesTreeView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ui->dataFilesTreeView->header()->setSectionsClickable(true);
    connect(ui->dataFilesTreeView->header(), &QHeaderView::sectionClicked, this,
            &ResultDetailsDialog::OnDataFileSectionClicked);
}

ResultDetailsDialog::~ResultDetailsDialog() = default;

void ResultDetailsDialog::setEntries(const QList<DiskUsageGlobal::TMainDataFile>* entries)
{
    files = entries;
}

void ResultDetailsDialog::fill()
{
    for (const auto& file : *files) {
        const QString fullPath = QDir::toNativeSeparators(file.filePath + '/' + file.fileName);
        qCDebug(lcDetails).noquote() << "fullPath:" << fullPath;
        auto* name = new QStandardItem(file.fileName);
        name->setIcon(ShellActions::smallFileIcon(fullPath));
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

void ResultDetailsDialog::OnDataFileSectionClicked(int index)
{
    descending = !descending;
    // Sizes sort by their value, not by their text.
    const int column = index == Size ? RawSize : index;
    model.sort(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

QModelIndex ResultDetailsDialog::firstSelected() const
{
    const QModelIndexList selected = ui->dataFilesTreeView->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? QModelIndex() : selected.first();
}

void ResultDetailsDialog::on_explorerButton_clicked()
{
    const QModelIndex row = firstSelected();
    if (!row.isValid())
        return;
    const QString name = row.siblingAtColumn(Name).data().toString();
    const QString folder = row.siblingAtColumn(Path).data().toString();
    qCDebug(lcDetails) << "Length:" << folder.size();
    // A folder that already ends in a separator (a drive or the root) takes no second one.
    const QString fullPath = folder.endsWith('/') ? folder + name : folder + '/' + name;
    ShellActions::showInExplorer(fullPath, this);
}

void ResultDetailsDialog::on_openFileButton_clicked()
{
    const QModelIndex row = firstSelected();
    if (!row.isValid())
        return;
    const QString fullPath = row.siblingAtColumn(Path).data().toString() + '/' +
                             row.siblingAtColumn(Name).data().toString();
    qCDebug(lcDetails).noquote() << "open file path:" << fullPath;
    ShellActions::openFile(fullPath, this);
}
