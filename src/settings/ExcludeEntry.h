#pragma once

#include <QString>

// One folder the user keeps out of scans.
struct ExcludeEntry {
    bool enable = true; // only enabled entries take part
    QString path;
};
