#include "ResultsLog.h"

Q_LOGGING_CATEGORY(lcResults, "tallyroot.results", QtInfoMsg)
