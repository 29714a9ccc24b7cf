#include "DiskUsageDetailInfoDialog.h"

#include "ui_DiskUsageDetailInfoDialog.h"

namespace {

QStandardItem* group(const QString& name)
{
    return new QStandardItem(QIcon(QStringLiteral(":/resources/images/SymbolBolt16.png")), name);
}

void addRow(QStandardItem* parent, const QString& field, QStandardItem* value)
{
    parent->appendRow({new QStandardItem(field), value});
}

} // namespace

DiskUsageDetailInfoDialog::DiskUsageDetailInfoDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DiskUsageDetailInfoDialog>())
{
    ui->setupUi(this);
    connect(ui->closeButton, &QAbstractButton::clicked, this, &QDialog::close);
    model.setHorizontalHeaderLabels({"Field", "Value"});
    ui->treeView->setModel(&model);
    ui->treeView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ui->treeView->setColumnWidth(0, 340);
}

DiskUsageDetailInfoDialog::~DiskUsageDetailInfoDialog() = default;

void DiskUsageDetailInfoDialog::fill(const DriveInfo& drive)
{
    setWindowTitle(drive.name);
    QStandardItem* general = group(QStringLiteral("General"));
    const std::pair<const char*, QString> figures[] = {
        {"Path", drive.rootPath},
        {"Serial Number", drive.serialNumber},
        {"File System", drive.fileSystem},
        {"Maximum File Name Length", drive.maxFileNameLength},
        {"Total Space", drive.totalSpace},
        {"Free Space", drive.freeSpace},
        {"Total Cluster", drive.totalClusters},
        {"Free Cluster", drive.freeClusters},
        {"Sectors per Cluster", drive.sectorsPerCluster},
        {"Bytes per Sector", drive.bytesPerSector},
    };
    for (const auto& [field, value] : figures)
        addRow(general, QString::fromLatin1(field), new QStandardItem(value));
    if (!drive.reservedSpace.isEmpty())
        addRow(general, QStringLiteral("Reserved for the System"),
               new QStandardItem(drive.reservedSpace));

    QStandardItem* features = group(QStringLiteral("File System Features"));
    const QIcon yes(QStringLiteral(":/resources/images/IconYes24.png"));
    const QIcon no(QStringLiteral(":/resources/images/IconNo24.png"));
    for (std::size_t i = 0; i < DriveInfo::featureTable.size(); ++i) {
        if (!drive.featureKnown[i])
            continue; // a Windows feature this platform cannot tell
        const bool set = drive.features[i];
        addRow(
            features, QString::fromLatin1(DriveInfo::featureTable[i].name),
            new QStandardItem(set ? yes : no, set ? QStringLiteral("Yes") : QStringLiteral("No")));
    }
    model.invisibleRootItem()->appendRow(general);
    model.invisibleRootItem()->appendRow(features);
    ui->treeView->expandAll();
}
