#include "app/WindowGeometry.h"

#include <QtTest>

using Stored = WindowGeometry::Stored;

class TestWindowGeometry : public QObject {
    Q_OBJECT

private slots:
    void restore_data();
    void restore();
    void negativeCoordinatesRoundTripAsUnsigned();
};

void TestWindowGeometry::restore_data()
{
    QTest::addColumn<Stored>("stored");
    QTest::addColumn<quint32>("cx");
    QTest::addColumn<quint32>("cy");
    QTest::addColumn<QList<quint32>>("expected");

    using L = QList<quint32>;
    QTest::newRow("first start") << Stored{} << 1920u << 1017u << L{100, 100, 986, 513};
    QTest::newRow("first start on a small screen")
        << Stored{} << 800u << 600u << L{100, 100, 986, 513};
    QTest::newRow("fits as stored")
        << Stored{40, 50, 1200, 700} << 1920u << 1017u << L{40, 50, 1200, 700};
    QTest::newRow("too small grows without moving")
        << Stored{1500, 900, 500, 300} << 1920u << 1017u << L{1500, 900, 986, 513};
    QTest::newRow("right edge pulls x back")
        << Stored{1500, 100, 986, 513} << 1920u << 1017u << L{934, 100, 986, 513};
    QTest::newRow("wider than the screen is clipped, x kept")
        << Stored{300, 100, 2500, 600} << 1920u << 1017u << L{300, 100, 1920, 600};
    QTest::newRow("off-screen x and y reset to 100")
        << Stored{5000, 3000, 986, 513} << 1920u << 1017u << L{100, 100, 986, 513};
    QTest::newRow("negative x written unsigned resets")
        << Stored{static_cast<quint32>(-8), static_cast<quint32>(-31), 986, 513} << 1920u << 1017u
        << L{100, 100, 986, 513};
    QTest::newRow("x at the edge is kept, then pulled back")
        << Stored{1920, 1017, 986, 513} << 1920u << 1017u << L{934, 504, 986, 513};
    QTest::newRow("bottom edge pulls y up")
        << Stored{100, 800, 986, 600} << 1920u << 1017u << L{100, 417, 986, 600};
    QTest::newRow("height above the width metric becomes cy")
        << Stored{100, 100, 986, 2000} << 1920u << 1017u << L{100, 100, 986, 1017};
    // Compared against the width, a height between cy and cx is kept and y wraps.
    QTest::newRow("height between cy and cx wraps y")
        << Stored{100, 100, 986, 1500} << 1920u << 1017u
        << L{100, static_cast<quint32>(1017 - 1500), 986, 1500};
    QTest::newRow("only some values stored")
        << Stored{std::nullopt, 40, std::nullopt, 700} << 1920u << 1017u << L{100, 40, 986, 700};
}

void TestWindowGeometry::restore()
{
    QFETCH(Stored, stored);
    QFETCH(quint32, cx);
    QFETCH(quint32, cy);
    QFETCH(QList<quint32>, expected);

    const auto g = WindowGeometry::restore(stored, {cx, cy});
    QCOMPARE((QList<quint32>{g.x, g.y, g.width, g.height}), expected);
}

void TestWindowGeometry::negativeCoordinatesRoundTripAsUnsigned()
{
    const auto g = WindowGeometry::fromRect(QRect(-8, -31, 1000, 600));
    QCOMPARE(g.x, 0xFFFFFFF8u);
    QCOMPARE(g.y, 0xFFFFFFE1u);
    QVERIFY(!g.hasPlaceablePosition());
    QVERIFY(WindowGeometry::fromRect(QRect(0, 0, 986, 513)).hasPlaceablePosition());
}

QTEST_APPLESS_MAIN(TestWindowGeometry)
#include "tst_windowgeometry.moc"
