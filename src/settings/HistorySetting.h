#pragma once

#include <QtGlobal>

#include <optional>

// Whether each finished scan is kept to look back on, and how many of them:
// so many of each folder, and all of them under a size.
struct HistoryChoice {
    static constexpr int mostPerFolder = 100;
    static constexpr int mostMegabytes = 1'000'000;

    bool enabled = true;
    int perFolder = 5;
    int megabytes = 512;

    [[nodiscard]] qint64 totalBytes() const { return qint64(megabytes) << 20; }
};

// The choice in its stored form: the numbers KeepScanHistory (1 on, 0 off),
// ScanHistoryPerFolder and ScanHistoryMegabytes.
namespace HistorySetting {

[[nodiscard]] HistoryChoice load();
// Each value missing, or out of its range, is the default.
[[nodiscard]] HistoryChoice fromStored(std::optional<quint32> enabled,
                                       std::optional<quint32> perFolder,
                                       std::optional<quint32> megabytes);
bool write(const HistoryChoice& choice);

} // namespace HistorySetting
