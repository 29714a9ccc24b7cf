#pragma once

#include <QString>

// Takes one file or folder off the disk for the user: to the trash (the
// recycle bin on Windows), or for good. Links are removed, never followed.
class FileRemoval {
public:
    struct Outcome {
        // Empty when the path is gone; otherwise why not, as the system says it.
        QString reason;
        // The entry that could not be removed: the path itself, or, for a
        // folder partly removed for good, the first entry inside that stayed.
        QString failedPath;

        [[nodiscard]] bool removed() const { return reason.isEmpty(); }
    };

    [[nodiscard]] static Outcome moveToTrash(const QString& path);
    // A folder goes with everything in it; what can be removed is, even when
    // some entry cannot.
    [[nodiscard]] static Outcome removePermanently(const QString& path);
};
