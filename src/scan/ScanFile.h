#pragma once

#include "ScanResult.h"

#include <QString>

#include <atomic>

// A scan kept in a file: the JSON that tallyroot-scan --json writes, plain or
// gzip-compressed. The file holds every entry of the tree; reading it counts
// every figure again as the walk did, so an opened scan shows as the scan did.
class ScanFile {
public:
    // The layout of the file; a reader takes this one and any before it that
    // holds the tree.
    static constexpr int formatVersion = 2;

    struct Opened {
        ScanResult result;
        QString error; // empty when the file was read whole
    };

    // Reads a scan file, plain or gzip. On failure the error names the file
    // and what is wrong with it: not a scan, cut short, damaged, or from a
    // newer format. A cancel set from another thread stops it (with an error).
    [[nodiscard]] static Opened read(const QString& path,
                                     const std::atomic<bool>* cancel = nullptr);
    // Writes the whole result, gzip-compressed when asked; the file takes
    // its place only once whole. False when it could not be written.
    static bool write(const QString& path, const ScanResult& result, bool compressed);
    // The name of this machine, as scans made here note it.
    [[nodiscard]] static QString localHost();
};
