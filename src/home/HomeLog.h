#pragma once

#include <QLoggingCategory>

// The debug lines and warnings of the home screen.
Q_DECLARE_LOGGING_CATEGORY(lcHome)
