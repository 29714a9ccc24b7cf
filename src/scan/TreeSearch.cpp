#include "TreeSearch.h"

namespace {

bool hasWildcards(const QString& pattern)
{
    return pattern.contains(QLatin1Char('*')) || pattern.contains(QLatin1Char('?')) ||
           pattern.contains(QLatin1Char('['));
}

// The longest run of plain characters in a wildcard pattern; nothing when a
// set such as [ab] makes the runs hard to tell.
QString longestLiteral(const QString& pattern)
{
    if (pattern.contains(QLatin1Char('[')))
        return {};
    QString longest;
    for (const QString& part : pattern.split(QRegularExpression(QStringLiteral("[*?]")))) {
        if (part.size() > longest.size())
            longest = part;
    }
    return longest;
}

} // namespace

TreeSearch::TreeSearch(const SearchQuery& query)
    : minimumSize(query.minimumSize)
{
    const auto caseless = QRegularExpression::CaseInsensitiveOption;
    if (query.regularExpression) {
        expression = QRegularExpression(query.pattern, caseless);
    } else if (hasWildcards(query.pattern)) {
        expression = QRegularExpression(
            QRegularExpression::wildcardToRegularExpression(query.pattern), caseless);
        literal = longestLiteral(query.pattern);
    } else {
        literal = query.pattern;
        literalIsEnough = true;
    }
    if (!literalIsEnough)
        expression.optimize();
}

bool TreeSearch::matches(const QString& name) const
{
    if (!literal.isEmpty() && !name.contains(literal, Qt::CaseInsensitive))
        return false;
    return literalIsEnough || expression.match(name).hasMatch();
}

std::vector<ScanTree::Index> TreeSearch::find(const ScanTree& tree,
                                              const std::atomic<bool>* stop) const
{
    std::vector<ScanTree::Index> found;
    if (!isValid())
        return found;
    std::vector<ScanTree::Index> folders{0};
    while (!folders.empty()) {
        if (stop && stop->load(std::memory_order_relaxed))
            return {};
        const ScanTree::Node& folder = tree.node(folders.back());
        folders.pop_back();
        const ScanTree::Index end = folder.firstChild + folder.childCount;
        for (ScanTree::Index child = folder.firstChild; child < end; ++child) {
            const ScanTree::Node& node = tree.node(child);
            if (node.flags & ScanTree::Excluded)
                continue;
            if (node.isFolder())
                folders.push_back(child);
            if (node.size >= minimumSize && matches(tree.nameText(child)))
                found.push_back(child);
        }
    }
    return found;
}
