#include "ScanHistory.h"

// Stands in until the history is kept.

QString ScanHistory::defaultLocation()
{
    return {};
}

ScanHistory::ScanHistory(QString where)
    : location(std::move(where))
{}

bool ScanHistory::keep(const ScanResult&, const Limits&)
{
    return false;
}

QList<ScanHistory::Entry> ScanHistory::scansOf(const QString&) const
{
    return {};
}

std::optional<QDateTime> ScanHistory::lastScanned(const QString&) const
{
    return std::nullopt;
}

QList<ScanHistory::Entry> ScanHistory::all() const
{
    return {};
}

bool ScanHistory::removeAll()
{
    return false;
}
