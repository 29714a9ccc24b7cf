#include "ScanLog.h"

Q_LOGGING_CATEGORY(lcScan, "tallyroot.scan", QtInfoMsg)
