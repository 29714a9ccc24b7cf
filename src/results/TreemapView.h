#pragma once

#include "TreemapLayout.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

class QStandardItem;
class QStandardItemModel;

// The map of the scanned tree: every folder a rectangle whose area is its size,
// its subfolders and the block of its own files inside it. Laid out and
// painted on a pool thread into an image, so that a large tree or a resize
// never holds up the window; a resize paints again once the user pauses.
// Hovering tells what a block is, a click chooses its folder, a double-click
// shows only that folder, Backspace goes back up one level.
class TreemapView : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TreemapView)

public:
    explicit TreemapView(QWidget* parent = nullptr);
    ~TreemapView() override;

    // The folder model to map. Its rows are read the first time the map is shown.
    void setSource(const QStandardItemModel* model);
    // Lets go of everything read from the model: call before its rows go.
    void clear();
    // Outlines a folder row's rectangle (or its nearest folder shown).
    void setHighlighted(const QStandardItem* folder);
    [[nodiscard]] bool canZoomOut() const;
    [[nodiscard]] bool isRendered() const { return !image.isNull(); }
    // Where a folder row, or the nearest folder above it that is shown,
    // stands on the map; empty when the map does not show it.
    [[nodiscard]] QRectF rectOf(const QStandardItem* folder) const;

    void zoomOut();

signals:
    void folderClicked(QStandardItem* folder);
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

    void readSource();
    void render();
    void takeRender(const std::shared_ptr<Render>& done);
    void zoomTo(std::uint32_t node);
    // The deepest cell at a point, or -1.
    [[nodiscard]] int cellAt(const QPoint& point) const;
    // The folder of a node: itself, or a files block's folder.
    [[nodiscard]] std::uint32_t folderOf(std::uint32_t node) const;
    [[nodiscard]] QString toolTipFor(std::uint32_t node) const;
    [[nodiscard]] QRectF rectOfNode(std::uint32_t node) const;

    const QStandardItemModel* source = nullptr;
    std::shared_ptr<const TreemapTree> tree;
    std::uint32_t top = 0;
    const QStandardItem* highlightedFolder = nullptr;
    std::uint32_t highlighted = TreemapTree::none;
    QImage image;
    std::vector<TreemapLayout::Cell> cells;
    QTimer resizePause;
    std::uint64_t generation = 0;
    std::shared_ptr<Delivery> delivery;
};
