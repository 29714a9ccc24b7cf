#include "RemovalQuestion.h"

#include "scan/DiskUsageGlobal.h"

#include <QLocale>
#include <QMessageBox>

RemovalQuestion::RemovalQuestion(const ScanTree& scanTree,
                                 const std::vector<ScanTree::Index>& chosen,
                                 ResultChanges::Removal removal)
    : tree(scanTree)
    , entries(chosen)
    , how(removal)
{}

QString RemovalQuestion::trashName()
{
#ifdef Q_OS_WIN
    return QStringLiteral("Recycle Bin");
#else
    return QStringLiteral("Trash");
#endif
}

// "the folder "Photos" (1,204 files, 3.20 GB)", "4 items (20 files, 1.10 MB)"
QString RemovalQuestion::what() const
{
    std::uint64_t size = 0;
    std::uint64_t files = 0;
    for (ScanTree::Index entry : entries) {
        const ScanTree::Node& node = tree.node(entry);
        DiskUsageGlobal::addSaturating(size, node.size);
        files += node.isFolder() ? node.files : 1;
    }
    const QString amount = QStringLiteral("%1 %2, %3")
                               .arg(QLocale().toString(qulonglong(files)),
                                    files == 1 ? QStringLiteral("file") : QStringLiteral("files"),
                                    DiskUsageGlobal::sizeText(double(size)).trimmed());
    if (entries.size() != 1)
        return QStringLiteral("these %1 items (%2)").arg(entries.size()).arg(amount);
    const ScanTree::Index entry = entries.front();
    const QString kind =
        tree.node(entry).isFolder() ? QStringLiteral("the folder") : QStringLiteral("the file");
    return QStringLiteral("%1 \"%2\" (%3)").arg(kind, tree.nameText(entry), amount);
}

QString RemovalQuestion::text() const
{
    if (how == ResultChanges::Removal::ToTrash)
        return QStringLiteral("Move %1 to the %2?").arg(what(), trashName());
    return QStringLiteral("Delete %1 permanently? This cannot be undone.").arg(what());
}

QString RemovalQuestion::details() const
{
    if (entries.size() < 2)
        return {};
    QStringList paths;
    for (ScanTree::Index entry : entries)
        paths << tree.shownPath(entry);
    return paths.join('\n');
}

bool RemovalQuestion::ask(QWidget* parent) const
{
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Confirm to delete"), text(),
                    QMessageBox::Yes | QMessageBox::No, parent);
    box.setDefaultButton(QMessageBox::No);
    box.setDetailedText(details());
    return box.exec() == QMessageBox::Yes;
}
