#pragma once

#include "scan/ScanComparison.h"

#include <QList>
#include <QWidget>

class QLabel;

// The legend beside the folder tree: the selected folder and its size, its
// ten largest children, and what the rest of it takes ("Other Smaller
// Items"), each with an icon; sizes and "largest" are by the measure the
// results are shown in. While comparing with an older scan, what grew:
// the folder's change, its ten children that grew most, and what else
// changed. Icons, names and sizes stand in three columns.
class LegendWidget : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LegendWidget)

public:
    explicit LegendWidget(QWidget* parent = nullptr);
    ~LegendWidget() override;

    void showFolder(const ScanTree& tree, ScanTree::Index folder, ScanTree::Measure measure);
    void showChanges(const ScanComparison& comparison, ScanTree::Index folder);

    // Longer names show as their first and last 18 characters around "...".
    [[nodiscard]] static QString shortenedName(const QString& name);

private:
    void showSummary(const QString& name, const QString& size);
    void showRow(int row, const QString& icon, const QString& name, const QString& size);
    void hideRowsFrom(int row);

    QLabel* summaryIcon = nullptr;
    QLabel* summaryName = nullptr;
    QLabel* summarySize = nullptr;
    QList<QLabel*> icons;
    QList<QLabel*> names;
    QList<QLabel*> sizes;
};
