#pragma once

#include "AppearanceSetting.h"
#include "ExcludeEntry.h"
#include "FileTypeCategory.h"
#include "HistorySetting.h"

#include <QList>

// What the user chose on the options page, as one value: the main window
// holds it, the options page edits a copy and hands it back once saved, and
// each scan's request is made from it.
struct Settings {
    // The categories data files are sorted into, in order.
    QList<FileTypeCategory> catalogue;
    // Up to ten folders left out of scans.
    QList<ExcludeEntry> exclusions;
    // Whether the OneDrive folder is left out of scans.
    bool excludeOneDrive = false;
    // Light or dark colours, or as the desktop asks.
    AppearanceChoice appearance = AppearanceChoice::FollowSystem;
    // Whether finished scans are kept, and how many.
    HistoryChoice history;

    // The built-in categories, no exclusions, OneDrive included, colours as
    // the desktop asks, five scans of a folder kept within 512 MB.
    [[nodiscard]] static Settings defaults();
    // What the settings store holds; the built-in categories where it holds none.
    [[nodiscard]] static Settings load();
};
