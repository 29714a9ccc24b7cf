#include "HomeLog.h"

Q_LOGGING_CATEGORY(lcHome, "tallyroot.home", QtInfoMsg)
