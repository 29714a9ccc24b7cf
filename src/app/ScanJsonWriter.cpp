#include "ScanJsonWriter.h"

#include "settings/FileTypeCatalogue.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStandardItemModel>

#include <vector>

namespace {

QVariant cellData(const QStandardItem* parent, int row, int column)
{
    const QStandardItem* cell = parent->child(row, column);
    return cell ? cell->data(Qt::DisplayRole) : QVariant();
}

QJsonObject folderObject(const QStandardItem* parent, int row, int depth)
{
    return {{"depth", depth},
            {"name", cellData(parent, row, 0).toString()},
            {"sizeText", cellData(parent, row, 1).toString()},
            {"files", cellData(parent, row, 2).toInt()},
            {"folders", cellData(parent, row, 3).toInt()},
            {"size", cellData(parent, row, 4).toLongLong()},
            {"path", cellData(parent, row, 5).toString()},
            {"percentage", cellData(parent, row, 6).toDouble()},
            {"maxData", cellData(parent, row, 7).toString()},
            {"index", cellData(parent, row, 8).toInt()}};
}

} // namespace

ScanJsonWriter::ScanJsonWriter(const QString& scanPath, const ScanTargets& targets)
    : scanPath(scanPath)
    , targets(targets)
{}

void ScanJsonWriter::setCounts(int items, int subFolders)
{
    itemsScanned = items;
    totalSubFolders = subFolders;
}

QJsonDocument ScanJsonWriter::document() const
{
    return QJsonDocument(QJsonObject{{"path", scanPath},
                                     {"itemsScanned", itemsScanned},
                                     {"totalSubFolders", totalSubFolders},
                                     {"folders", folders()},
                                     {"biggestFiles", biggestFiles()},
                                     {"categories", categories()}});
}

QJsonArray ScanJsonWriter::folders() const
{
    QJsonArray result;
    // Pre-order, children in the order the walk appended them.
    struct Pending {
        const QStandardItem* parent;
        int row;
        int depth;
    };
    const QStandardItem* top = targets.folderModel->invisibleRootItem();
    std::vector<Pending> pending;
    for (int row = top->rowCount() - 1; row >= 0; --row)
        pending.push_back({top, row, 0});
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        result.append(folderObject(next.parent, next.row, next.depth));
        const QStandardItem* folder = next.parent->child(next.row);
        for (int row = folder->rowCount() - 1; row >= 0; --row)
            pending.push_back({folder, row, next.depth + 1});
    }
    return result;
}

QJsonArray ScanJsonWriter::biggestFiles() const
{
    QJsonArray result;
    for (const auto& file : *targets.biggestFiles) {
        result.append(QJsonObject{{"filePath", file.filePath},
                                  {"size", qint64(file.size)},
                                  {"lastAccessTime", qint64(file.lastAccessTime)}});
    }
    return result;
}

QJsonArray ScanJsonWriter::categories() const
{
    QJsonArray result;
    const QList<FileTypeCategory>& catalogue = FileTypeCatalogue::instance();
    for (int index = 0; index < catalogue.size(); ++index) {
        const FileTypeCategory& category = catalogue[index];
        QJsonArray files;
        for (const auto& file : targets.dataFiles->value(index)) {
            files.append(QJsonObject{{"fileName", file.fileName},
                                     {"sizeText", file.sizeText},
                                     {"lastAccessText", file.lastAccessText},
                                     {"filePath", file.filePath},
                                     {"size", file.size},
                                     {"index", file.index}});
        }
        const QStandardItem* row = targets.dataFilesModel->item(index, 1);
        const QStandardItem* mebibytes = targets.dataFilesModel->item(index, 4);
        const bool shown = category.checked && row && mebibytes;
        result.append(QJsonObject{
            {"name", category.name},
            {"checked", category.checked},
            {"total", category.totalSize},
            {"sizeText", shown ? QJsonValue(row->text()) : QJsonValue()},
            {"mebibytes",
             shown ? QJsonValue(mebibytes->data(Qt::DisplayRole).toDouble()) : QJsonValue()},
            {"files", files}});
    }
    return result;
}
