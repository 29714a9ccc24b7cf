#pragma once

#include "scan/ScanTargets.h"

#include <QJsonDocument>

// The whole result of a scan as one JSON document: the folder rows in
// pre-order, the biggest files, and the categories with their files.
class ScanJsonWriter {
public:
    ScanJsonWriter(const QString& scanPath, const ScanTargets& targets);

    void setCounts(int itemsScanned, int totalSubFolders);
    [[nodiscard]] QJsonDocument document() const;

private:
    [[nodiscard]] QJsonArray folders() const;
    [[nodiscard]] QJsonArray biggestFiles() const;
    [[nodiscard]] QJsonArray categories() const;

    QString scanPath;
    ScanTargets targets;
    int itemsScanned = 0;
    int totalSubFolders = 0;
};
