#pragma once

#include "scan/ScanTree.h"

#include <QList>
#include <QWidget>

class QLabel;

// The legend beside the folder tree: the selected folder and its size, its
// ten largest children, and what the rest of it takes ("Other Smaller
// Items"), each with an icon. Icons, names and sizes stand in three columns.
class LegendWidget : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LegendWidget)

public:
    explicit LegendWidget(QWidget* parent = nullptr);
    ~LegendWidget() override;

    void showFolder(const ScanTree& tree, ScanTree::Index folder);

    // Longer names show as their first and last 18 characters around "...".
    [[nodiscard]] static QString shortenedName(const QString& name);

private:
    void showRow(int row, const QString& icon, const QString& name, quint64 size);

    QLabel* summaryIcon = nullptr;
    QLabel* summaryName = nullptr;
    QLabel* summarySize = nullptr;
    QList<QLabel*> icons;
    QList<QLabel*> names;
    QList<QLabel*> sizes;
};
