#pragma once

#include "PoolHandOff.h"
#include "TreemapLayout.h"
#include "TreemapPainter.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

// The map of the scanned tree: every folder a rectangle whose area is its size
// (or its space on disk), its subfolders and files inside it, each file a tile
// coloured by its type or by the folder it lies in. Laid out and painted on a
// pool thread into an image, so that a large tree or a resize never holds up
// the window; a resize paints again once the user pauses. Hovering tells what
// a tile is, a click chooses its folder and file, a double-click shows only
// that folder, Backspace goes back up one level. While comparing with an
// older scan, the tiles are coloured by their change.
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
    // Sizes as bytes or as space on disk: the areas, and the legend's shares.
    void setMeasure(ScanTree::Measure measure);
    [[nodiscard]] ScanTree::Measure measure() const { return measuredBy; }
    void setColouring(TreemapPainter::Colouring colouring);
    [[nodiscard]] TreemapPainter::Colouring colouring() const { return colouredBy; }
    // The names of the scan's categories, by index: what a file's type is called.
    void setCategoryNames(const QStringList& names) { categoryNames = names; }
    // What each category takes in the whole scan, in the map's measure; none
    // until a picture of this scan and measure has counted them.
    [[nodiscard]] const TreemapLayout::CategoryAmounts* categoryAmounts() const
    {
        return amountsCounted ? &amounts : nullptr;
    }
    // Outlines a folder's or a file's tile (or its nearest folder shown).
    void setHighlighted(ScanTree::Index node);
    [[nodiscard]] ScanTree::Index highlightedNode() const { return highlighted; }
    // The file or folder whose tile was last clicked, while the picture
    // shown still has that tile: what the map's actions act on. None after a
    // click on a block of small files or beside every tile, once something
    // else is outlined, and once the scan changes or the map zooms.
    [[nodiscard]] ScanTree::Index chosenNode() const;
    [[nodiscard]] bool canZoomOut() const;
    [[nodiscard]] bool isRendered() const { return !image.isNull(); }
    // Where a folder or file, or the nearest folder above it that is shown,
    // stands on the map; empty when the map does not show it.
    [[nodiscard]] QRectF rectOf(ScanTree::Index node) const;

    void zoomOut();

signals:
    void folderClicked(ScanTree::Index folder);
    // After folderClicked() of its folder, when the click was on a file's tile.
    void fileClicked(ScanTree::Index file);
    // The folder the map now shows, as its path.
    void zoomChanged(const QString& folderPath);
    void rendered();
    // The category amounts were counted again: another scan or measure.
    void categoryAmountsChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct Render;

    void render();
    // Paints again now if shown, else when next shown.
    void redraw();
    void takeRender(const std::shared_ptr<Render>& done);
    void zoomTo(ScanTree::Index folder);
    // The deepest cell at a point, or -1.
    [[nodiscard]] int cellAt(const QPoint& point) const;
    [[nodiscard]] QString toolTipFor(const TreemapLayout::Cell& cell) const;
    [[nodiscard]] QString fileToolTip(ScanTree::Index file) const;
    [[nodiscard]] QString filesToolTip(const TreemapLayout::Cell& cell) const;
    [[nodiscard]] QString shareText(const TreemapLayout::Cell& cell) const;

    std::shared_ptr<const ScanTree> tree;
    std::shared_ptr<const ScanComparison> changes;
    ScanTree::Index top = 0;
    ScanTree::Index highlighted = ScanTree::none;
    ScanTree::Index chosen = ScanTree::none;
    ScanTree::Measure measuredBy = ScanTree::Measure::Size;
    TreemapPainter::Colouring colouredBy = TreemapPainter::Colouring::ByType;
    QStringList categoryNames;
    TreemapLayout::CategoryAmounts amounts{};
    bool amountsCounted = false;
    QImage image;
    std::vector<TreemapLayout::Cell> cells;
    QTimer resizePause;
    std::uint64_t generation = 0;
    PoolHandOff<TreemapView> handOff;
};
