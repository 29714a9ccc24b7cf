#include "SearchPanel.h"

#include "Columns.h"
#include "SearchResultsModel.h"
#include "ui_SearchPanel.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <unordered_set>

using namespace SearchColumn;

SearchPanel::SearchPanel(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::SearchPanel>())
    , model(new SearchResultsModel(this))
{
    ui->setupUi(this);
    // Two threads: a search that is being stopped never holds up the newest.
    threads.setMaxThreadCount(2);
    QTreeView* view = ui->searchResultsView;
    view->setModel(model);
    view->setColumnWidth(Name, 280);
    view->setColumnWidth(Folder, 360);
    view->setColumnWidth(Size, 90);
    view->header()->setSortIndicator(Size, Qt::DescendingOrder);
    // A click on a header asks the model to sort, which it leaves undone: a
    // million rows are sorted on the search threads instead.
    view->setSortingEnabled(true);
    connect(view->header(), &QHeaderView::sortIndicatorChanged, this, &SearchPanel::onSortChanged);
    connect(view, &QTreeView::doubleClicked, this, &SearchPanel::onRowDoubleClicked);
    view->installEventFilter(this);
    ui->searchEdit->installEventFilter(this);

    connect(ui->searchEdit, &QLineEdit::textChanged, this, &SearchPanel::onQueryChanged);
    connect(ui->regularExpressionCheckBox, &QCheckBox::toggled, this, &SearchPanel::onQueryChanged);
    connect(ui->minimumSizeSpinBox, &QDoubleSpinBox::valueChanged, this,
            &SearchPanel::onQueryChanged);
    connect(ui->minimumSizeUnitCombo, &QComboBox::currentIndexChanged, this,
            &SearchPanel::onQueryChanged);
    clear();
}

SearchPanel::~SearchPanel()
{
    // The search threads post their rows to the panel: none may outlive it.
    stopSearches();
    threads.waitForDone();
}

void SearchPanel::setTree(std::shared_ptr<const ScanTree> newTree, QStringList categoryNames)
{
    if (!newTree) {
        clear();
        return;
    }
    tree = std::move(newTree);
    categories = std::move(categoryNames);
    enableFields(true);
    search();
}

void SearchPanel::clear()
{
    stopSearches();
    threads.waitForDone();
    tree.reset();
    categories.clear();
    enableFields(false);
    showNoRows(QStringLiteral("No scan to search"));
}

void SearchPanel::focusSearch()
{
    ui->searchEdit->setFocus(Qt::ShortcutFocusReason);
    ui->searchEdit->selectAll();
}

std::vector<ScanTree::Index> SearchPanel::selectedNodes() const
{
    QModelIndexList rows = ui->searchResultsView->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    std::vector<Index> nodes;
    for (const QModelIndex& row : std::as_const(rows))
        nodes.push_back(model->nodeAt(row.row()));
    return nodes;
}

QTreeView* SearchPanel::resultsView() const
{
    return ui->searchResultsView;
}

SearchQuery SearchPanel::query() const
{
    const double unit = std::pow(1024.0, ui->minimumSizeUnitCombo->currentIndex() + 1);
    const double bytes = std::round(ui->minimumSizeSpinBox->value() * unit);
    return {ui->searchEdit->text(), ui->regularExpressionCheckBox->isChecked(),
            std::uint64_t(bytes)};
}

void SearchPanel::waitForSearches()
{
    threads.waitForDone();
}

bool SearchPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    QTreeView* view = ui->searchResultsView;
    if (watched == view && enter && view->currentIndex().isValid()) {
        emit chosen(model->nodeAt(view->currentIndex().row()));
        return true;
    }
    // From the filter, Down or Enter goes on to the rows.
    if (watched == ui->searchEdit && (enter || key == Qt::Key_Down) && model->rowCount() > 0) {
        view->setFocus(Qt::TabFocusReason);
        if (!view->currentIndex().isValid())
            view->setCurrentIndex(model->index(0, Name));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void SearchPanel::onQueryChanged()
{
    search();
}

void SearchPanel::onSortChanged()
{
    // While a search is under way its rows are not here yet: it starts again,
    // sorting by the new column.
    if (underWay || model->nodes().empty()) {
        search();
        return;
    }
    Rows rows = model->nodes();
    start([rows = std::move(rows)](const std::atomic<bool>&) { return rows; });
}

void SearchPanel::onRowDoubleClicked(const QModelIndex& index)
{
    if (index.isValid())
        emit chosen(model->nodeAt(index.row()));
}

void SearchPanel::search()
{
    stopSearches();
    if (!tree)
        return;
    const SearchQuery wanted = query();
    if (wanted.pattern.isEmpty() && wanted.minimumSize == 0) {
        showNoRows(QStringLiteral("Type a part of a name, or set a minimum size"));
        return;
    }
    // Made and checked here, at once: a regular expression compiles in no
    // time, and the search threads then only match.
    auto search = std::make_shared<const TreeSearch>(wanted);
    if (!search->isValid()) {
        showNoRows(QStringLiteral("Not a valid regular expression: %1").arg(search->errorText()));
        return;
    }
#ifdef Q_OS_WIN
    // Matched on another thread, Qt 6.4's regular expressions leave the
    // process hanging at its exit under Wine: an expression is matched here.
    if (wanted.regularExpression) {
        start([rows = search->find(*tree)](const std::atomic<bool>&) { return rows; });
        return;
    }
#endif
    const std::shared_ptr<const ScanTree> searched = tree;
    start([searched, search](const std::atomic<bool>& stop) {
        return search->find(*searched, &stop);
    });
}

void SearchPanel::start(Job job)
{
    stopSearches();
    underWay = true;
    auto stop = std::make_shared<std::atomic<bool>>(false);
    stopNewest = stop;
    const QHeaderView* header = ui->searchResultsView->header();
    const int column = header->sortIndicatorSection();
    const Qt::SortOrder order = header->sortIndicatorOrder();
    // The thread holds the tree and the catalogue: it may end after clear().
    threads.start([this, id = newest, stop, job = std::move(job), searched = tree,
                   names = categories, column, order] {
        auto rows = std::make_shared<Rows>(
            SearchResultsModel::sorted(*searched, names, job(*stop), column, order, stop.get()));
        if (stop->load())
            return;
        // The panel waits for this thread before it goes, so it is still here.
        QMetaObject::invokeMethod(
            this, [this, id, rows] { onJobDone(id, rows); }, Qt::QueuedConnection);
    });
}

void SearchPanel::onJobDone(quint64 job, const std::shared_ptr<Rows>& rows)
{
    if (job != newest)
        return;
    underWay = false;
    showRows(std::move(*rows));
}

void SearchPanel::showNoRows(const QString& status)
{
    model->setResults(tree, categories, {});
    ui->searchStatusLabel->setText(status);
    emit resultsShown();
}

void SearchPanel::showRows(Rows rows)
{
    const bool sameTree = model->tree() == tree;
    const std::vector<Index> selected = sameTree ? selectedNodes() : std::vector<Index>();
    const std::size_t count = rows.size();
    model->setResults(tree, categories, std::move(rows));
    reselect(selected);
    if (count == 0)
        ui->searchStatusLabel->setText(QStringLiteral("No matches"));
    else if (count == 1)
        ui->searchStatusLabel->setText(QStringLiteral("1 match"));
    else
        ui->searchStatusLabel->setText(
            QStringLiteral("%1 matches").arg(QLocale().toString(qulonglong(count))));
    emit resultsShown();
}

void SearchPanel::stopSearches()
{
    ++newest;
    underWay = false;
    if (stopNewest)
        stopNewest->store(true);
    stopNewest.reset();
}

// What was selected stays selected as long as it is still found.
void SearchPanel::reselect(const std::vector<Index>& nodes)
{
    if (nodes.empty())
        return;
    const std::unordered_set<Index> wanted(nodes.begin(), nodes.end());
    QItemSelection selection;
    const Rows& rows = model->nodes();
    // Runs of rows make one range each, so that selecting everything stays cheap.
    int first = -1;
    for (int row = 0; row <= int(rows.size()); ++row) {
        const bool selected = row < int(rows.size()) && wanted.count(rows[std::size_t(row)]);
        if (selected && first < 0)
            first = row;
        if (!selected && first >= 0) {
            selection.select(model->index(first, 0), model->index(row - 1, Count - 1));
            first = -1;
        }
    }
    ui->searchResultsView->selectionModel()->select(selection, QItemSelectionModel::Select);
}

void SearchPanel::enableFields(bool enabled)
{
    for (QWidget* field : std::initializer_list<QWidget*>{
             ui->searchEdit, ui->regularExpressionCheckBox, ui->minimumSizeSpinBox,
             ui->minimumSizeUnitCombo, ui->searchResultsView})
        field->setEnabled(enabled);
}
