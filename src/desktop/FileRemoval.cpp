#include "FileRemoval.h"

#include "platform/NativeText.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <filesystem>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

QString textOf(const fs::path& path)
{
    return QDir::toNativeSeparators(platform::toQString(path.native()));
}

// Remembers the first entry that stayed; a folder that stays because
// something in it did is not news.
struct FirstFailure {
    FileRemoval::Outcome outcome;

    void note(const fs::path& path, const std::error_code& error)
    {
        if (outcome.removed() && error)
            outcome = {QString::fromStdString(error.message()), textOf(path)};
    }
};

// Empties the folders top down and removes them bottom up, without
// recursion, so that no tree is too deep.
void removeTree(const fs::path& top, FirstFailure& failure)
{
    std::vector<fs::path> folders{top};
    for (std::size_t next = 0; next < folders.size(); ++next) {
        std::error_code error;
        fs::directory_iterator entries(folders[next], error);
        for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
            std::error_code kind;
            if (entries->symlink_status(kind).type() == fs::file_type::directory) {
                folders.push_back(entries->path());
                continue;
            }
            std::error_code removal;
            fs::remove(entries->path(), removal);
            failure.note(entries->path(), removal);
        }
        failure.note(folders[next], error);
    }
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        std::error_code error;
        fs::remove(*folder, error);
        if (error != std::errc::directory_not_empty)
            failure.note(*folder, error);
    }
}

} // namespace

FileRemoval::Outcome FileRemoval::moveToTrash(const QString& path)
{
#ifndef Q_OS_WIN
    // Without the user's data folder, Qt 6.4 makes its trash folders in the
    // working folder rather than fail.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
#endif
    QFile entry(path);
    if (!entry.moveToTrash())
        return {entry.errorString(), QDir::toNativeSeparators(path)};
    if (QDir::isRelativePath(entry.fileName())) {
        QFile::rename(entry.fileName(), path);
        return {QStringLiteral("No trash folder could be made for it"),
                QDir::toNativeSeparators(path)};
    }
    return {};
}

FileRemoval::Outcome FileRemoval::removePermanently(const QString& path)
{
    const fs::path target(platform::toNative(path));
    FirstFailure failure;
    std::error_code error;
    if (fs::symlink_status(target, error).type() == fs::file_type::directory) {
        removeTree(target, failure);
    } else {
        fs::remove(target, error);
        failure.note(target, error);
    }
    return failure.outcome;
}
