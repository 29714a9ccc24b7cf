#include "AppearanceSetting.h"

#include "SettingsLog.h"
#include "SettingsStore.h"

namespace AppearanceSetting {

namespace {
const QString valueName = QStringLiteral("Appearance");
}

AppearanceChoice load()
{
    return fromStored(SettingsStore::readDword(valueName));
}

AppearanceChoice fromStored(std::optional<quint32> value)
{
    switch (value.value_or(0)) {
    case 1:
        return AppearanceChoice::Light;
    case 2:
        return AppearanceChoice::Dark;
    case 0:
        return AppearanceChoice::FollowSystem;
    default:
        qCDebug(lcSettings) << "Appearance: unknown value" << *value;
        return AppearanceChoice::FollowSystem;
    }
}

quint32 toStored(AppearanceChoice choice)
{
    switch (choice) {
    case AppearanceChoice::Light:
        return 1;
    case AppearanceChoice::Dark:
        return 2;
    case AppearanceChoice::FollowSystem:
        break;
    }
    return 0;
}

bool write(AppearanceChoice choice)
{
    return SettingsStore::writeDword(valueName, toStored(choice));
}

} // namespace AppearanceSetting
