#include "SettingsLog.h"

Q_LOGGING_CATEGORY(lcSettings, "tallyroot.settings", QtInfoMsg)
