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

void LegendWidget::showFolder(const ScanTree& tree, ScanTree::Index folder)
{
    const quint64 total = tree.node(folder).size;
    summaryIcon->setPixmap(QPixmap(folderIcon));
    summaryName->setText(tree.nameText(folder));
    summarySize->setText(DiskUsageGlobal::sizeText(double(total)));

    quint64 listed = 0;
    int filled = 0;
    for (ScanTree::Index child : tree.largestChildren(folder, rows - 1)) {
        const quint64 size = tree.node(child).size;
        listed += size;
        showRow(filled++, tree.node(child).isFolder() ? folderIcon : fileIcon,
                shortenedName(tree.nameText(child)), size);
    }
    for (int hidden = filled; hidden < rows; ++hidden) {
        icons[hidden]->hide();
        names[hidden]->hide();
        sizes[hidden]->hide();
    }
    // Everything that is not among the largest children.
    if (total > listed && filled < rows)
        showRow(filled, otherIcon, QStringLiteral("Other Smaller Items"), total - listed);
}

void LegendWidget::showRow(int row, const QString& icon, const QString& name, quint64 size)
{
    icons[row]->setPixmap(QPixmap(icon));
    names[row]->setText(name);
    sizes[row]->setText(DiskUsageGlobal::sizeText(double(size)));
    icons[row]->show();
    names[row]->show();
    sizes[row]->show();
}

QString LegendWidget::shortenedName(const QString& name)
{
    if (name.size() <= 40)
        return name;
    return name.left(18) + QStringLiteral("...") + name.right(18);
}
