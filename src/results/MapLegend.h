#pragma once

#include "TreemapLayout.h"

#include <QColor>
#include <QWidget>

#include <optional>
#include <vector>

// What the map's colours mean, beside it: each file type with its share of
// the scan, or, coloured by folder, each of the scanned folder's largest
// children, or while comparing, the colours of change. Rows are painted, a swatch, a name and a
// share each.
class MapLegend : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MapLegend)

public:
    struct Entry {
        QColor colour; // none for a line that is only text
        QString name;
        std::optional<double> share; // percent of the scan
    };

    explicit MapLegend(QWidget* parent = nullptr);
    ~MapLegend() override;

    // The categories that take anything, the largest first, and the files of
    // no category.
    void showCategories(const QStringList& names, const TreemapLayout::CategoryAmounts& amounts,
                        ScanTree::Measure measure);
    // The scanned folder's largest children and its own files, as the map
    // colours them by folder.
    void showBranches(const ScanTree& tree, ScanTree::Measure measure);
    // What the colours of change mean, while comparing with an older scan.
    void showChanges();
    void clear();
    [[nodiscard]] const QString& title() const { return heading; }
    [[nodiscard]] const std::vector<Entry>& entries() const { return rows; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void show(const QString& title, std::vector<Entry> entries);
    [[nodiscard]] int rowHeight() const;

    QString heading;
    std::vector<Entry> rows;
};
