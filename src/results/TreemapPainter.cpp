#include "TreemapPainter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// The ridge of the outermost level, and how much lower each level's is.
constexpr double ridgeHeight = 0.35;
constexpr double ridgeFactor = 0.8;
// Ambient and directed light, from the upper left.
constexpr double ambient = 0.45;
constexpr double directed = 0.6;
const double lightLength = std::sqrt(1.0 + 4.0 + 100.0);
const double lightX = -1.0 / lightLength;
const double lightY = -2.0 / lightLength;
const double lightZ = 10.0 / lightLength;

// A quadratic surface over the map: z = x2·x² + x1·x + y2·y² + y1·y.
struct Surface {
    double x1 = 0;
    double x2 = 0;
    double y1 = 0;
    double y2 = 0;
};

// One parabolic ridge across [low, high], added to a surface's terms.
void addRidge(double low, double high, double height, double& first, double& second)
{
    if (high - low <= 0)
        return;
    first += 4 * height * (high + low) / (high - low);
    second -= 4 * height / (high - low);
}

void paintFlat(QImage& image, const QRectF& rect, QRgb colour)
{
    const QRect pixels = rect.toAlignedRect().intersected(image.rect());
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::fill(line + pixels.left(), line + pixels.right() + 1, colour);
    }
}

void paintCushion(QImage& image, const QRectF& rect, const Surface& surface, QColor colour)
{
    const QRect pixels = rect.toAlignedRect().intersected(image.rect());
    const double red = colour.redF() * 255;
    const double green = colour.greenF() * 255;
    const double blue = colour.blueF() * 255;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const double ny = -(2 * surface.y2 * (y + 0.5) + surface.y1);
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            const double nx = -(2 * surface.x2 * (x + 0.5) + surface.x1);
            const double cosine =
                (nx * lightX + ny * lightY + lightZ) / std::sqrt(nx * nx + ny * ny + 1.0);
            const double light = ambient + directed * std::max(0.0, cosine);
            line[x] = qRgb(int(std::min(255.0, red * light)), int(std::min(255.0, green * light)),
                           int(std::min(255.0, blue * light)));
        }
    }
}

} // namespace

// Mid tones, which read on the map's grey and in light and dark windows alike.
QColor TreemapPainter::categoryColour(std::uint8_t category)
{
    // The built-in categories in catalogue order: 3D images teal, audio
    // violet, backups brown, archives orange, disk images red, documents
    // blue, fonts pink, installers yellow, photos green, drawings lime,
    // videos purple, web files sky blue.
    static constexpr std::array<std::array<int, 3>, 12> colours{{{175, 160, 200},
                                                                 {265, 130, 230},
                                                                 {35, 120, 160},
                                                                 {25, 200, 245},
                                                                 {0, 190, 215},
                                                                 {215, 170, 235},
                                                                 {320, 110, 235},
                                                                 {55, 190, 235},
                                                                 {120, 150, 200},
                                                                 {85, 170, 220},
                                                                 {295, 190, 190},
                                                                 {195, 150, 240}}};
    if (category == ScanTree::noCategory)
        return QColor::fromHsv(0, 0, 165);
    if (category < colours.size()) {
        const std::array<int, 3>& hsv = colours[category];
        return QColor::fromHsv(hsv[0], hsv[1], hsv[2]);
    }
    // Categories the user added go round the circle by the golden angle.
    return QColor::fromHsv(int(category * 137.5) % 360, 150, 215);
}

QColor TreemapPainter::branchColour(std::uint16_t branch)
{
    // Hues far apart for neighbours, repeated only after twelve branches.
    static constexpr std::array<int, 12> hues{210, 30, 120, 330, 50,  270,
                                              170, 0,  90,  240, 300, 190};
    if (branch == TreemapLayout::ownFilesBranch)
        return QColor::fromHsv(0, 0, 190);
    return QColor::fromHsv(hues[branch % hues.size()], 170, 230);
}

QColor TreemapPainter::tintColour(TreemapLayout::Tint tint)
{
    using Tint = TreemapLayout::Tint;
    switch (tint) {
    case Tint::Normal:
        break;
    case Tint::Same:
        return QColor::fromHsv(0, 0, 175);
    case Tint::Grown:
        return QColor::fromHsv(8, 130, 235);
    case Tint::Shrunk:
        return QColor::fromHsv(130, 140, 200);
    case Tint::New:
        return QColor::fromHsv(355, 235, 220);
    }
    return {};
}

// By folder, deeper levels grow lighter so the nesting reads; a type keeps
// one colour at every depth, the colour its legend shows.
QColor TreemapPainter::colourOf(const TreemapLayout::Cell& node, Colouring colouring)
{
    if (colouring == Colouring::ByType && node.tint == TreemapLayout::Tint::Normal)
        return node.leaf ? categoryColour(node.category) : QColor(150, 150, 150);
    const double lighter = std::min(0.45, 0.07 * double(node.depth > 0 ? node.depth - 1 : 0));
    const QColor colour = node.tint == TreemapLayout::Tint::Normal ? branchColour(node.branch)
                                                                   : tintColour(node.tint);
    return QColor::fromRgbF(float(colour.redF() + (1 - colour.redF()) * lighter),
                            float(colour.greenF() + (1 - colour.greenF()) * lighter),
                            float(colour.blueF() + (1 - colour.blueF()) * lighter));
}

QImage TreemapPainter::paint(const std::vector<TreemapLayout::Cell>& cells, QSize size,
                             Colouring colouring)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(90, 90, 90));
    std::vector<Surface> surfaces(cells.size());
    std::vector<double> heights(cells.size(), ridgeHeight);
    for (std::size_t index = 0; index < cells.size(); ++index) {
        const TreemapLayout::Cell& cell = cells[index];
        if (cell.parent >= 0) {
            surfaces[index] = surfaces[std::size_t(cell.parent)];
            heights[index] = heights[std::size_t(cell.parent)] * ridgeFactor;
        }
        Surface& surface = surfaces[index];
        addRidge(cell.rect.left(), cell.rect.right(), heights[index], surface.x1, surface.x2);
        addRidge(cell.rect.top(), cell.rect.bottom(), heights[index], surface.y1, surface.y2);
        const QColor colour = colourOf(cell, colouring);
        // A folder with children shown is only its frame: a darker flat fill,
        // which its children cover but for the edge.
        if (cell.leaf)
            paintCushion(image, cell.rect, surface, colour);
        else
            paintFlat(image, cell.rect, colour.darker(150).rgb());
    }
    return image;
}
