#pragma once

#include "TreemapLayout.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

// The map of the scanned tree: every folder a rectangle whose area is its size,
// its subfolders and the block of its own files inside it. Laid out and
// painted on a pool thread into an image, so that a large tree or a resize
// never holds up the window; a resize paints again once the user pauses.
// Hovering tells what a block is, a click chooses its folder, a double-click
// shows only that folder, Backspace goes back up one level. While comparing
// with an older scan, the blocks are coloured by their change.
class TreemapView : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TreemapView)

public:
    explicit TreemapView(QWidget* parent = nullptr);
    ~TreemapView() override;

    // The scan to map; it is laid out the first time the map is shown.
    void setSource(std::shared_ptr<const ScanTree> tree);
    // The same scan, changed: the map goes on showing the folder it showed,
    // or the nearest one above it that is still there.
    void follow(std::shared_ptr<const ScanTree> changed);
    // Lets go of the scan and everything drawn of it.
    void clear();
    // Colours the blocks by a comparison's changes (one made of another tree
    // than the map's is not taken), or, given none, by the folder they lie in
    // again. A changed scan lets go of the comparison.
    void showChanges(std::shared_ptr<const ScanComparison> comparison);
    [[nodiscard]] bool showsChanges() const { return changes != nullptr; }
    // Outlines a folder's rectangle (or its nearest folder shown).
    void setHighlighted(ScanTree::Index folder);
    [[nodiscard]] bool canZoomOut() const;
    [[nodiscard]] bool isRendered() const { return !image.isNull(); }
    // Where a folder, or the nearest folder above it that is shown, stands on
    // the map; empty when the map does not show it.
    [[nodiscard]] QRectF rectOf(ScanTree::Index folder) const;

    void zoomOut();

signals:
    void folderClicked(ScanTree::Index folder);
    // The folder the map now shows, as its path.
    void zoomChanged(const QString& folderPath);
    void rendered();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct Delivery;
    struct Render;

    void render();
    void takeRender(const std::shared_ptr<Render>& done);
    void zoomTo(ScanTree::Index folder);
    // The deepest cell at a point, or -1.
    [[nodiscard]] int cellAt(const QPoint& point) const;
    [[nodiscard]] QString toolTipFor(TreemapLayout::Block block) const;

    std::shared_ptr<const ScanTree> tree;
    std::shared_ptr<const ScanComparison> changes;
    ScanTree::Index top = 0;
    ScanTree::Index highlighted = ScanTree::none;
    QImage image;
    std::vector<TreemapLayout::Cell> cells;
    QTimer resizePause;
    std::uint64_t generation = 0;
    std::shared_ptr<Delivery> delivery;
};
