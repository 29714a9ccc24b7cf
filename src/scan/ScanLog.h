#pragma once

#include <QLoggingCategory>

// The debug lines and warnings of the scan area.
Q_DECLARE_LOGGING_CATEGORY(lcScan)
