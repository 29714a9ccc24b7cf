#include "Settings.h"

#include "ExclusionSettings.h"
#include "FileTypeCatalogue.h"

Settings Settings::defaults()
{
    return {FileTypeCatalogue::defaults(), {}, false, AppearanceChoice::FollowSystem, {}};
}

Settings Settings::load()
{
    Settings settings;
    settings.catalogue = FileTypeCatalogue::load();
    if (settings.catalogue.isEmpty())
        settings.catalogue = FileTypeCatalogue::defaults();
    settings.exclusions = ExclusionSettings::load();
    settings.excludeOneDrive = ExclusionSettings::loadExcludeOneDrive();
    settings.appearance = AppearanceSetting::load();
    settings.history = HistorySetting::load();
    return settings;
}
