#include "ScanJsonWriter.h"

#include "scan/FolderColumn.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardItem>

#include <vector>

namespace {

using namespace FolderColumn;

QByteArray compact(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray compact(const QJsonArray& array)
{
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

QByteArray compact(const QJsonValue& value)
{
    // A lone value is written as the one element of an array, without its brackets.
    const QByteArray array = compact(QJsonArray{value});
    return array.mid(1, array.size() - 2);
}

// The cells of one folder row, wherever the row stands.
struct FolderRow {
    const QStandardItem* parent; // null for the root row
    int row;
    int depth;
};

QVariant cellData(const ScanResult& result, const FolderRow& folder, int column)
{
    const QStandardItem* cell =
        folder.parent ? folder.parent->child(folder.row, column) : result.rootRow.value(column);
    return cell ? cell->data(Qt::DisplayRole) : QVariant();
}

QJsonObject folderObject(const ScanResult& result, const FolderRow& folder)
{
    const auto data = [&](int column) { return cellData(result, folder, column); };
    return {{"depth", folder.depth},
            {"name", data(Name).toString()},
            {"sizeText", data(SizeText).toString()},
            {"files", data(Files).toInt()},
            {"folders", data(Folders).toInt()},
            {"size", data(Size).toLongLong()},
            {"onDisk", data(OnDisk).toLongLong()},
            {"path", data(Path).toString()},
            {"percentage", data(Percentage).toDouble()},
            {"maxData", data(MaxData).toString()},
            {"index", data(Index).toInt()}};
}

} // namespace

ScanJsonWriter::ScanJsonWriter(const QString& scanPath, const ScanResult& result)
    : scanPath(scanPath)
    , result(result)
{}

bool ScanJsonWriter::write(QIODevice& device) const
{
    bool written = device.write("{\"biggestFiles\":" + biggestFiles() +
                                ",\"categories\":" + categories() + ",\"folders\":") >= 0;
    written = written && writeFolders(device);
    const QByteArray rest =
        ",\"itemsScanned\":" + QByteArray::number(result.itemsScanned) +
        ",\"path\":" + compact(QJsonValue(scanPath)) +
        ",\"totalSubFolders\":" + QByteArray::number(result.totalSubFolders) +
        ",\"unreadable\":" + compact(QJsonArray::fromStringList(result.unreadable)) + "}";
    return written && device.write(rest) >= 0;
}

// Pre-order, children in the order the walk appended them, one object at a time.
bool ScanJsonWriter::writeFolders(QIODevice& device) const
{
    if (device.write("[") < 0)
        return false;
    std::vector<FolderRow> pending;
    if (!result.rootRow.isEmpty())
        pending.push_back({nullptr, 0, 0});
    bool first = true;
    while (!pending.empty()) {
        const FolderRow next = pending.back();
        pending.pop_back();
        const QByteArray object = compact(folderObject(result, next));
        if (device.write(first ? object : "," + object) < 0)
            return false;
        first = false;
        const QStandardItem* folder =
            next.parent ? next.parent->child(next.row) : result.rootRow.constFirst();
        for (int row = folder->rowCount() - 1; row >= 0; --row)
            pending.push_back({folder, row, next.depth + 1});
    }
    return device.write("]") >= 0;
}

QByteArray ScanJsonWriter::biggestFiles() const
{
    QJsonArray files;
    for (const auto& file : result.biggestFiles) {
        files.append(QJsonObject{{"filePath", file.filePath},
                                 {"size", qint64(file.size)},
                                 {"onDisk", qint64(file.onDisk)},
                                 {"lastAccessTime", qint64(file.lastAccessTime)}});
    }
    return compact(files);
}

QByteArray ScanJsonWriter::categories() const
{
    QJsonArray categories;
    for (int index = 0; index < result.categories.size(); ++index) {
        const FileTypeCategory& category = result.categories[index];
        QJsonArray files;
        for (const auto& file : result.dataFiles.value(index)) {
            files.append(QJsonObject{{"fileName", file.fileName},
                                     {"sizeText", file.sizeText},
                                     {"lastAccessText", file.lastAccessText},
                                     {"filePath", file.filePath},
                                     {"size", file.size},
                                     {"index", file.index}});
        }
        const QList<QStandardItem*> row = result.categoryRows.value(index);
        const QStandardItem* sizeText = row.value(1);
        const QStandardItem* mebibytes = row.value(4);
        const bool shown = category.checked && sizeText && mebibytes;
        categories.append(QJsonObject{
            {"name", category.name},
            {"checked", category.checked},
            {"total", category.totalSize},
            {"sizeText", shown ? QJsonValue(sizeText->text()) : QJsonValue()},
            {"mebibytes",
             shown ? QJsonValue(mebibytes->data(Qt::DisplayRole).toDouble()) : QJsonValue()},
            {"files", files}});
    }
    return compact(categories);
}
