#include "HistorySetting.h"

#include "SettingsLog.h"
#include "SettingsStore.h"

namespace HistorySetting {

namespace {

const QString enabledName = QStringLiteral("KeepScanHistory");
const QString perFolderName = QStringLiteral("ScanHistoryPerFolder");
const QString megabytesName = QStringLiteral("ScanHistoryMegabytes");

int inRange(const QString& name, std::optional<quint32> value, int most, int fallback)
{
    if (!value)
        return fallback;
    if (*value < 1 || *value > quint32(most)) {
        qCDebug(lcSettings) << name << "out of range:" << *value;
        return fallback;
    }
    return int(*value);
}

} // namespace

HistoryChoice load()
{
    return fromStored(SettingsStore::readDword(enabledName),
                      SettingsStore::readDword(perFolderName),
                      SettingsStore::readDword(megabytesName));
}

HistoryChoice fromStored(std::optional<quint32> enabled, std::optional<quint32> perFolder,
                         std::optional<quint32> megabytes)
{
    const HistoryChoice defaults;
    HistoryChoice choice;
    if (enabled && *enabled > 1)
        qCDebug(lcSettings) << enabledName << "unknown value:" << *enabled;
    else if (enabled)
        choice.enabled = *enabled == 1;
    choice.perFolder =
        inRange(perFolderName, perFolder, HistoryChoice::mostPerFolder, defaults.perFolder);
    choice.megabytes =
        inRange(megabytesName, megabytes, HistoryChoice::mostMegabytes, defaults.megabytes);
    return choice;
}

bool write(const HistoryChoice& choice)
{
    const bool enabled = SettingsStore::writeDword(enabledName, choice.enabled ? 1 : 0);
    const bool perFolder = SettingsStore::writeDword(perFolderName, quint32(choice.perFolder));
    const bool megabytes = SettingsStore::writeDword(megabytesName, quint32(choice.megabytes));
    return enabled && perFolder && megabytes;
}

} // namespace HistorySetting
