// Built as a part of the scan engine, this file must not compile: a layer sees
// only the headers of the layers below it, and the home screen is above.
#include "home/DiskUsageForm.h"
