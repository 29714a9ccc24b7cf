#include <QIcon>
#include <QImage>
#include <QtTest>

// Every image the screens refer to by resource path must load, at its intended
// size, with a twice-as-large twin for high-density screens.
class TestImages : public QObject {
    Q_OBJECT

private slots:
    void loads_data();
    void loads();
    void windowIconHoldsEverySize();
};

void TestImages::loads_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    const QStringList small = {
        "3dImages16",        "Audio16",       "Backup16",        "CompressedFiles16",
        "DiskImage16",       "Document16",    "Font16",          "Install16",
        "RasterImage16",     "VectorImage16", "Video16",         "WebFile16",
        "SymbolBolt16",      "generalFile16", "genericFolder16", "genericOtherFile",
        "genericCloudFolder"};
    const QStringList toolbar = {"About24",     "Activate24",      "Add24",     "AddFolder24",
                                 "ArrowLeft24", "Configuration24", "Delete24",  "FolderSearch24",
                                 "Help24",      "IconNo24",        "IconYes24", "Save24",
                                 "Search24",    "websiteIcon24"};
    for (const QString& name : small)
        QTest::newRow(qPrintable(name)) << name << 16;
    for (const QString& name : toolbar)
        QTest::newRow(qPrintable(name)) << name << 24;
    QTest::newRow("genericCloudFolder40") << QStringLiteral("genericCloudFolder40") << 40;
    QTest::newRow("SearchFolder") << QStringLiteral("SearchFolder") << 128;
    QTest::newRow("Tallyroot") << QStringLiteral("Tallyroot") << 128;
}

void TestImages::loads()
{
    QFETCH(QString, name);
    QFETCH(int, size);
    const QImage image(":/resources/images/" + name + ".png");
    QCOMPARE(image.size(), QSize(size, size));
    const QImage twin(":/resources/images/" + name + "@2x.png");
    QCOMPARE(twin.size(), QSize(2 * size, 2 * size));
}

void TestImages::windowIconHoldsEverySize()
{
    const QIcon icon(":/resources/images/DiskUsage.ico");
    const QList<QSize> sizes = icon.availableSizes();
    for (int size : {16, 24, 32, 48, 64, 128, 256})
        QVERIFY2(sizes.contains(QSize(size, size)), qPrintable(QString::number(size)));
}

QTEST_MAIN(TestImages)
#include "tst_images.moc"
