#include "ExclusionSettings.h"

#include "SettingsStore.h"

#include "SettingsLog.h"

namespace ExclusionSettings {

QList<ExcludeEntry> load()
{
    QList<ExcludeEntry> list;
    for (int n = 0; n < maximumFolders; ++n) {
        const auto text = SettingsStore::readString(QStringLiteral("ExludeFolder%1").arg(n));
        if (!text)
            continue;
        qCDebug(lcSettings).noquote() << "dataStr:" << *text;
        if (const auto entry = parseStored(*text))
            append(list, *entry);
    }
    return list;
}

bool loadExcludeOneDrive()
{
    return SettingsStore::readDword("ExcludeOneDriveFolder").value_or(0) != 0;
}

bool append(QList<ExcludeEntry>& list, const ExcludeEntry& entry)
{
    if (list.size() >= maximumFolders)
        return false;
    for (const ExcludeEntry& existing : list) {
        if (existing.path.compare(entry.path, Qt::CaseInsensitive) == 0)
            return false;
    }
    list.append(entry);
    return true;
}

std::optional<ExcludeEntry> parseStored(const QString& text)
{
    const qsizetype semicolon = text.indexOf(';');
    if (semicolon <= 0)
        return std::nullopt;
    bool isNumber = false;
    const qlonglong flag = text.left(semicolon).toLongLong(&isNumber);
    return ExcludeEntry{isNumber && flag != 0, text.mid(semicolon + 1)};
}

} // namespace ExclusionSettings
