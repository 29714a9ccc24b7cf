#include "MapLegend.h"

#include "TreemapPainter.h"

#include <QPainter>

#include <algorithm>
#include <numeric>

namespace {

constexpr int swatch = 12;
constexpr int gap = 6;
constexpr int nameWidth = 190;
// The branches' colours come round again after this many.
constexpr std::size_t branchesNamed = 12;

double percentOf(std::uint64_t part, std::uint64_t whole)
{
    return whole > 0 ? 100.0 * double(part) / double(whole) : 0.0;
}

// A share too small for a tenth still tells that there is some.
QString shareText(double share)
{
    return share > 0 && share < 0.05 ? QStringLiteral("<0.1%")
                                     : QStringLiteral("%1%").arg(share, 0, 'f', 1);
}

} // namespace

MapLegend::MapLegend(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

MapLegend::~MapLegend() = default;

void MapLegend::showCategories(const QStringList& names,
                               const TreemapLayout::CategoryAmounts& amounts,
                               ScanTree::Measure measure)
{
    const std::uint64_t whole = std::accumulate(amounts.begin(), amounts.end(), std::uint64_t(0));
    std::vector<Entry> entries;
    for (std::size_t category = 0; category < amounts.size(); ++category) {
        if (amounts[category] == 0 || category == ScanTree::noCategory)
            continue;
        const QString name = qsizetype(category) < names.size()
                                 ? names[qsizetype(category)]
                                 : QStringLiteral("Category %1").arg(category + 1);
        entries.push_back({TreemapPainter::categoryColour(std::uint8_t(category)), name,
                           percentOf(amounts[category], whole)});
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.share > b.share; });
    if (amounts[ScanTree::noCategory] > 0) {
        entries.push_back({TreemapPainter::categoryColour(ScanTree::noCategory),
                           QStringLiteral("Other files"),
                           percentOf(amounts[ScanTree::noCategory], whole)});
    }
    show(measure == ScanTree::Measure::OnDisk ? QStringLiteral("File types on disk")
                                              : QStringLiteral("File types by size"),
         std::move(entries));
}

void MapLegend::showBranches(const ScanTree& tree, ScanTree::Measure measure)
{
    const std::vector<ScanTree::Index> folders = TreemapLayout::rankedSubfolders(tree, 0, measure);
    const std::uint64_t whole = TreemapLayout::filesAndFoldersOf(tree, 0, measure);
    std::vector<Entry> entries;
    std::uint64_t inFolders = 0;
    for (std::size_t rank = 0; rank < folders.size(); ++rank) {
        const std::uint64_t amount = tree.node(folders[rank]).amount(measure);
        inFolders += amount;
        if (rank < branchesNamed) {
            entries.push_back({TreemapPainter::branchColour(std::uint16_t(rank)),
                               tree.nameText(folders[rank]), percentOf(amount, whole)});
        }
    }
    if (folders.size() > branchesNamed) {
        entries.push_back(
            {QColor(),
             QStringLiteral("and %1 more folders").arg(folders.size() - branchesNamed),
             {}});
    }
    if (whole > inFolders) {
        entries.push_back({TreemapPainter::branchColour(TreemapLayout::ownFilesBranch),
                           QStringLiteral("Files of its own"),
                           percentOf(whole - inFolders, whole)});
    }
    show(measure == ScanTree::Measure::OnDisk ? QStringLiteral("Folders on disk")
                                              : QStringLiteral("Folders by size"),
         std::move(entries));
}

void MapLegend::showChanges()
{
    using Tint = TreemapLayout::Tint;
    std::vector<Entry> entries;
    for (const auto& [tint, name] :
         {std::pair{Tint::Grown, "Grown"}, std::pair{Tint::Shrunk, "Shrunk"},
          std::pair{Tint::New, "New"}, std::pair{Tint::Same, "Unchanged"}})
        entries.push_back({TreemapPainter::tintColour(tint), QString::fromLatin1(name), {}});
    show(QStringLiteral("Since the older scan"), std::move(entries));
}

void MapLegend::clear()
{
    show({}, {});
}

void MapLegend::show(const QString& title, std::vector<Entry> entries)
{
    heading = title;
    rows = std::move(entries);
    updateGeometry();
    update();
}

int MapLegend::rowHeight() const
{
    return std::max(swatch, fontMetrics().height()) + 4;
}

QSize MapLegend::sizeHint() const
{
    const int shareWidth = fontMetrics().horizontalAdvance(QStringLiteral("100.0%"));
    return {gap + swatch + gap + nameWidth + gap + shareWidth + gap,
            rowHeight() * int(rows.size() + 1) + gap};
}

QSize MapLegend::minimumSizeHint() const
{
    return {sizeHint().width(), 0};
}

void MapLegend::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int height = rowHeight();
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.drawText(QRect(gap, 0, width() - 2 * gap, height), Qt::AlignVCenter, heading);
    painter.setFont(font());
    const int shareLeft = gap + swatch + gap + nameWidth + gap;
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const Entry& entry = rows[index];
        const int top = height * int(index + 1);
        const QRect text(gap + swatch + gap, top, nameWidth, height);
        if (entry.colour.isValid())
            painter.fillRect(QRect(gap, top + (height - swatch) / 2, swatch, swatch), entry.colour);
        if (entry.share) {
            painter.drawText(QRect(shareLeft, top, width() - shareLeft - gap, height),
                             Qt::AlignVCenter | Qt::AlignRight, shareText(*entry.share));
        }
        painter.drawText(text, Qt::AlignVCenter,
                         fontMetrics().elidedText(entry.name, Qt::ElideMiddle, nameWidth));
    }
}
