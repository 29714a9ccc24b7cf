#include "LegendWidget.h"

#include "scan/DiskUsageGlobal.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

// The ten largest children and the rest.
constexpr int rows = 11;
// Icons and texts stand in separate columns; one height keeps their rows level.
constexpr int rowHeight = 20;

const QString folderIcon = QStringLiteral(":/resources/images/genericFolder16.png");
const QString fileIcon = QStringLiteral(":/resources/images/generalFile16.png");
const QString otherIcon = QStringLiteral(":/resources/images/genericOtherFile.png");

QLabel* textLabel(QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setFixedHeight(rowHeight);
    return label;
}

QLabel* iconLabel(QWidget* parent)
{
    QLabel* label = textLabel(parent);
    label->setMaximumWidth(20);
    return label;
}

} // namespace

// A summary row, a gap, ten rows for the largest children, a smaller gap, and
// the row that usually shows everything else.
LegendWidget::LegendWidget(QWidget* parent)
    : QWidget(parent)
{
    auto* columns = new QHBoxLayout(this);
    auto* iconColumn = new QVBoxLayout;
    auto* nameColumn = new QVBoxLayout;
    auto* sizeColumn = new QVBoxLayout;
    for (QVBoxLayout* column : {iconColumn, nameColumn, sizeColumn}) {
        column->setAlignment(Qt::AlignTop);
        columns->addLayout(column);
    }
    const auto addRow = [&](QLabel* icon, QLabel* name, QLabel* size) {
        iconColumn->addWidget(icon);
        nameColumn->addWidget(name);
        sizeColumn->addWidget(size);
    };
    const auto addSpace = [&](int pixels) {
        for (QVBoxLayout* column : {iconColumn, nameColumn, sizeColumn})
            column->addSpacing(pixels);
    };
    summaryIcon = iconLabel(this);
    summaryName = textLabel(this);
    summarySize = textLabel(this);
    addRow(summaryIcon, summaryName, summarySize);
    addSpace(20);
    for (int row = 0; row < rows; ++row) {
        if (row == rows - 1)
            addSpace(10);
        icons << iconLabel(this);
        names << textLabel(this);
        sizes << textLabel(this);
        addRow(icons.last(), names.last(), sizes.last());
    }
}

LegendWidget::~LegendWidget() = default;

void LegendWidget::showFolder(const ScanTree& tree, ScanTree::Index folder,
                              ScanTree::Measure measure)
{
    const quint64 total = tree.node(folder).amount(measure);
    showSummary(tree.nameText(folder), DiskUsageGlobal::sizeText(double(total)));

    quint64 listed = 0;
    int filled = 0;
    for (ScanTree::Index child : tree.largestChildren(folder, rows - 1, false, measure)) {
        const quint64 size = tree.node(child).amount(measure);
        listed += size;
        showRow(filled++, tree.node(child).isFolder() ? folderIcon : fileIcon,
                shortenedName(tree.nameText(child)), DiskUsageGlobal::sizeText(double(size)));
    }
    hideRowsFrom(filled);
    // Everything that is not among the largest children.
    if (total > listed && filled < rows)
        showRow(filled, otherIcon, QStringLiteral("Other Smaller Items"),
                DiskUsageGlobal::sizeText(double(total - listed)));
}

void LegendWidget::showChanges(const ScanComparison& comparison, ScanTree::Index folder)
{
    using Change = ScanComparison::Change;
    const ScanTree& tree = comparison.newer();
    const Change total = comparison.changeOf(folder);
    showSummary(tree.nameText(folder), ScanComparison::changeText(total));

    std::int64_t listed = 0;
    int filled = 0;
    for (ScanTree::Index child : comparison.grownChildren(folder, rows - 1)) {
        const Change change = comparison.changeOf(child);
        listed += change.bytes;
        const bool isNew = change.status == ScanComparison::Status::New;
        showRow(filled++, tree.node(child).isFolder() ? folderIcon : fileIcon,
                shortenedName(tree.nameText(child)) +
                    (isNew ? QStringLiteral(" (new)") : QString()),
                ScanComparison::changeText({change.bytes, 0, change.status}));
    }
    if (filled == 0)
        showRow(filled++, otherIcon, QStringLiteral("Nothing in it grew"), {});
    hideRowsFrom(filled);
    // What shrank, went, or grew too little to be listed.
    if (total.bytes != listed && filled < rows)
        showRow(filled, otherIcon, QStringLiteral("Other Changes"),
                ScanComparison::changeText({total.bytes - listed, 0, total.status}));
}

void LegendWidget::showSummary(const QString& name, const QString& size)
{
    summaryIcon->setPixmap(QPixmap(folderIcon));
    summaryName->setText(name);
    summarySize->setText(size);
}

void LegendWidget::showRow(int row, const QString& icon, const QString& name, const QString& size)
{
    icons[row]->setPixmap(QPixmap(icon));
    names[row]->setText(name);
    sizes[row]->setText(size);
    icons[row]->show();
    names[row]->show();
    sizes[row]->show();
}

void LegendWidget::hideRowsFrom(int row)
{
    for (int hidden = row; hidden < rows; ++hidden) {
        icons[hidden]->hide();
        names[hidden]->hide();
        sizes[hidden]->hide();
    }
}

QString LegendWidget::shortenedName(const QString& name)
{
    if (name.size() <= 40)
        return name;
    return name.left(18) + QStringLiteral("...") + name.right(18);
}
