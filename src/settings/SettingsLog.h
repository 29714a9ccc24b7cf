#pragma once

#include <QLoggingCategory>

// The debug lines and warnings of the settings area.
Q_DECLARE_LOGGING_CATEGORY(lcSettings)
