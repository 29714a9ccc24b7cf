#pragma once

#include "ScanResult.h"

#include <QString>

class QIODevice;

// The whole result of a scan as one JSON object, written as it goes rather
// than built in memory: the biggest files, the categories with their files,
// the folders in pre-order, the counts, whose scan it is and the folders that
// could not be read; then, under "tree", every entry of the tree, enough to
// open the scan again. Keys stand in alphabetical order at every level.
class ScanJsonWriter {
public:
    ScanJsonWriter(const QString& scanPath, const ScanResult& result);

    // False when the device would not take it all.
    bool write(QIODevice& device) const;

    // A JSON string, quoted and escaped as QJsonDocument writes it.
    static void appendString(QByteArray& out, QStringView text);
    // The same without the quotes.
    static void appendEscaped(QByteArray& out, QStringView text);
    static void appendEscapedName(QByteArray& out, platform::NativeStringView name);

private:
    [[nodiscard]] QByteArray biggestFiles() const;
    [[nodiscard]] QByteArray categories() const;
    bool writeFolders(QIODevice& device) const;
    bool writeTree(QIODevice& device) const;
    void appendEntry(QByteArray& out, ScanTree::Index entry) const;
    void appendFolder(QByteArray& out, ScanTree::Index folder, int depth,
                      const QByteArray& escapedPath) const;
    void appendChildPath(QByteArray& escapedPath, ScanTree::Index child, bool belowRoot) const;
    void appendSummary(QByteArray& out, ScanTree::Index folder,
                       const std::vector<ScanTree::Index>& largest) const;

    QString scanPath;
    const ScanResult& result;
};
