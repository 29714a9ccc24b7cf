#include "SettingsStore.h"

#include "platform/DebugLog.h"
#include "platform/SettingsBackend.h"
#include "platform/UserFolders.h"

#include <QLoggingCategory>

// Quiet unless asked for: QT_LOGGING_RULES="tallyroot.*.debug=true".
Q_LOGGING_CATEGORY(lcPlatform, "tallyroot.platform", QtInfoMsg)

namespace {

void forwardPlatformLine(const std::wstring& line)
{
    qCDebug(lcPlatform).noquote() << QString::fromStdWString(line);
}

// Installed by the first use of the store, before any platform line can be written.
[[maybe_unused]] const bool sinkInstalled = (platform::setDebugSink(&forwardPlatformLine), true);

} // namespace

namespace SettingsStore {

std::optional<quint32> readDword(const QString& valueName)
{
    std::uint32_t value = 0;
    if (!platform::readDwordValue(valueName.toStdWString(), value))
        return std::nullopt;
    return value;
}

std::optional<QString> readString(const QString& valueName)
{
    std::wstring text;
    if (!platform::readStringValue(valueName.toStdWString(), text))
        return std::nullopt;
    return QString::fromStdWString(text);
}

bool writeDword(const QString& valueName, quint32 value)
{
    return platform::writeDwordValue(valueName.toStdWString(), value);
}

bool writeString(const QString& valueName, const QString& text)
{
    return platform::writeStringValue(valueName.toStdWString(), text.toStdWString());
}

QString location()
{
    return QString::fromStdWString(platform::settingsLocation());
}

quint32 storedValueCount()
{
    return platform::storedValueCount();
}

Batch::Batch()
{
    platform::beginSettingsBatch();
}

Batch::~Batch()
{
    if (!finished)
        (void)platform::endSettingsBatch();
}

bool Batch::finish()
{
    finished = true;
    return platform::endSettingsBatch();
}

QString oneDrivePath()
{
    return QString::fromStdWString(platform::oneDriveFolderPath());
}

QString downloadsPath()
{
    return QString::fromStdWString(platform::downloadsFolderPath());
}

} // namespace SettingsStore
