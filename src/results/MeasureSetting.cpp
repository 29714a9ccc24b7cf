#include "MeasureSetting.h"

#include "ResultsLog.h"
#include "settings/SettingsStore.h"

namespace MeasureSetting {

namespace {
const QString valueName = QStringLiteral("SizeMeasure");
}

ScanTree::Measure load()
{
    return fromStored(SettingsStore::readDword(valueName));
}

ScanTree::Measure fromStored(std::optional<quint32> value)
{
    switch (value.value_or(0)) {
    case 0:
        return ScanTree::Measure::Size;
    case 1:
        return ScanTree::Measure::OnDisk;
    default:
        qCDebug(lcResults) << "SizeMeasure: unknown value" << *value;
        return ScanTree::Measure::Size;
    }
}

bool write(ScanTree::Measure measure)
{
    return SettingsStore::writeDword(valueName, measure == ScanTree::Measure::OnDisk ? 1 : 0);
}

} // namespace MeasureSetting
