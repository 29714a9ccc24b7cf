#pragma once

#include <QLoggingCategory>

// The debug lines and warnings of the results area.
Q_DECLARE_LOGGING_CATEGORY(lcResults)
