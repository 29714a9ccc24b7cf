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
    QString run;
    for (QChar c : pattern) {
        if (c == QLatin1Char('*') || c == QLatin1Char('?'))
            run.clear();
        else
            run += c;
        if (run.size() > longest.size())
            longest = run;
    }
    return longest;
}

// Whether one character matches the pattern's element at `at`: ?, a set
// [...] (with ranges a-z, and ! or ^ first to leave them out) or the
// character itself; `at` moves past the element. A [ without its ] is
// itself.
bool matchesOne(QStringView pattern, qsizetype& at, QChar c)
{
    const QChar element = pattern[at];
    if (element == QLatin1Char('?')) {
        ++at;
        return true;
    }
    if (element == QLatin1Char('[')) {
        qsizetype first = at + 1;
        const bool negated = first < pattern.size() && (pattern[first] == QLatin1Char('!') ||
                                                        pattern[first] == QLatin1Char('^'));
        first += negated ? 1 : 0;
        const qsizetype close = pattern.indexOf(QLatin1Char(']'), first + 1);
        if (close >= 0) {
            bool in = false;
            for (qsizetype i = first; i < close; ++i) {
                const bool range = i + 2 < close && pattern[i + 1] == QLatin1Char('-');
                in = in || (range ? pattern[i] <= c && c <= pattern[i + 2] : pattern[i] == c);
                i += range ? 2 : 0;
            }
            at = close + 1;
            return in != negated;
        }
    }
    ++at;
    return element == c;
}

// A whole name against a wildcard pattern, both case-folded: each * takes
// any run of characters, tried shortest first, going back to the last *
// when the rest fails.
bool matchesWildcards(QStringView pattern, QStringView name)
{
    qsizetype at = 0;
    qsizetype in = 0;
    qsizetype lastStar = -1;
    qsizetype starTook = 0;
    while (in < name.size()) {
        if (at < pattern.size() && pattern[at] == QLatin1Char('*')) {
            lastStar = at++;
            starTook = in;
            continue;
        }
        qsizetype next = at;
        if (at < pattern.size() && matchesOne(pattern, next, name[in])) {
            at = next;
            ++in;
            continue;
        }
        if (lastStar < 0)
            return false;
        at = lastStar + 1;
        in = ++starTook;
    }
    while (at < pattern.size() && pattern[at] == QLatin1Char('*'))
        ++at;
    return at == pattern.size();
}

} // namespace

TreeSearch::TreeSearch(const SearchQuery& query)
    : minimumSize(query.minimumSize)
{
    const auto caseless = QRegularExpression::CaseInsensitiveOption;
    if (query.regularExpression) {
        expression = QRegularExpression(query.pattern, caseless);
    } else if (hasWildcards(query.pattern)) {
        wildcards = query.pattern.toCaseFolded();
        literal = longestLiteral(query.pattern);
    } else {
        literal = query.pattern;
        literalIsEnough = true;
    }
    if (query.regularExpression)
        expression.optimize();
}

bool TreeSearch::matches(const QString& name) const
{
    if (!literal.isEmpty() && !name.contains(literal, Qt::CaseInsensitive))
        return false;
    if (literalIsEnough)
        return true;
    if (!wildcards.isEmpty())
        return matchesWildcards(wildcards, name.toCaseFolded());
    return expression.match(name).hasMatch();
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
