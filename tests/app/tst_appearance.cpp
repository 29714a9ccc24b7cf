// Light and dark for the whole application: what the choice and the desktop
// make of the palette and style, and the icons that follow them. The desktop
// is a stand-in, so the machine's own setting never decides a result.

#include "IsolatedSettings.h"
#include "app/Appearance.h"
#include "app/MainWindow.h"
#include "app/PaletteIcons.h"
#include "settings/DiskUsageOptionsForm.h"

#include <QApplication>
#include <QComboBox>
#include <QStyle>
#include <QToolButton>
#include <QtTest>

using platform::ColourScheme;

class TestAppearance : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void darkIsAFusionWindowWithLightText();
    void lightGivesBackTheStyleAndPaletteTheApplicationHad();
    void followingTheSystemAsksTheDesktop_data();
    void followingTheSystemAsksTheDesktop();
    void aForcedChoiceDoesNotAskTheDesktop();
    void buttonIconsAreInkedInDarkAndTheirOwnInLight();
    void savingTheOptionsHandsTheChoiceToTheWindow();

private:
    // The desktop's answer, and how often it was asked.
    ColourScheme desktop = ColourScheme::Unknown;
    int asked = 0;
    Appearance::Detector detector()
    {
        return [this] {
            ++asked;
            return desktop;
        };
    }

    IsolatedSettings isolated;
    QString startStyle;
    QPalette startPalette;
};

namespace {

bool looksDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 80 &&
           palette.color(QPalette::WindowText).lightness() > 180 &&
           palette.color(QPalette::Base).lightness() < 80 &&
           palette.color(QPalette::Text).lightness() > 180 &&
           palette.color(QPalette::ButtonText).lightness() > 180;
}

bool isStyle(const QString& name)
{
    return QApplication::style()->name().compare(name, Qt::CaseInsensitive) == 0;
}

// The mean lightness of the icon's solid pixels: its ink, for the arrow and
// the disk, which are ink all over.
int inkLightness(const QIcon& icon, QSize size)
{
    const QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
    int sum = 0;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.alpha() > 200) {
                sum += colour.lightness();
                ++count;
            }
        }
    }
    return count > 0 ? sum / count : -1;
}

// Widgets hear of a new application palette through posted events.
void settle()
{
    QCoreApplication::processEvents();
}

} // namespace

void TestAppearance::init()
{
    isolated.clear();
    desktop = ColourScheme::Unknown;
    asked = 0;
    // A style other than the dark one, so that going back to it shows.
    QApplication::setStyle(QStringLiteral("Windows"));
    startStyle = QApplication::style()->name();
    startPalette = QApplication::palette();
}

void TestAppearance::cleanup()
{
    QApplication::setStyle(startStyle);
    QApplication::setPalette(startPalette);
}

void TestAppearance::darkIsAFusionWindowWithLightText()
{
    QVERIFY(!looksDark(QApplication::palette()));
    Appearance appearance(detector());
    appearance.apply(AppearanceChoice::Dark);
    QVERIFY(appearance.isDark());
    QVERIFY(looksDark(QApplication::palette()));
    QVERIFY(isStyle(QStringLiteral("Fusion")));
    // Widgets take it too.
    QWidget widget;
    QVERIFY(looksDark(widget.palette()));
}

void TestAppearance::lightGivesBackTheStyleAndPaletteTheApplicationHad()
{
    Appearance appearance(detector());
    appearance.apply(AppearanceChoice::Dark);
    appearance.apply(AppearanceChoice::Light);
    QVERIFY(!appearance.isDark());
    QVERIFY(isStyle(startStyle));
    QCOMPARE(QApplication::palette(), startPalette);
    // Light first of all changes nothing.
    Appearance again(detector());
    again.apply(AppearanceChoice::Light);
    QVERIFY(isStyle(startStyle));
    QCOMPARE(QApplication::palette(), startPalette);
}

void TestAppearance::followingTheSystemAsksTheDesktop_data()
{
    QTest::addColumn<ColourScheme>("scheme");
    QTest::addColumn<bool>("dark");
    QTest::newRow("dark") << ColourScheme::Dark << true;
    QTest::newRow("light") << ColourScheme::Light << false;
    QTest::newRow("no answer") << ColourScheme::Unknown << false;
}

void TestAppearance::followingTheSystemAsksTheDesktop()
{
    QFETCH(ColourScheme, scheme);
    QFETCH(bool, dark);
    desktop = scheme;
    Appearance appearance(detector());
    appearance.apply(AppearanceChoice::FollowSystem);
    QCOMPARE(asked, 1);
    QCOMPARE(appearance.isDark(), dark);
    QCOMPARE(looksDark(QApplication::palette()), dark);
}

void TestAppearance::aForcedChoiceDoesNotAskTheDesktop()
{
    desktop = ColourScheme::Dark;
    Appearance appearance(detector());
    appearance.apply(AppearanceChoice::Light);
    QVERIFY(!looksDark(QApplication::palette()));
    desktop = ColourScheme::Light;
    appearance.apply(AppearanceChoice::Dark);
    QVERIFY(looksDark(QApplication::palette()));
    QCOMPARE(asked, 0);
}

void TestAppearance::buttonIconsAreInkedInDarkAndTheirOwnInLight()
{
    PaletteIcons icons;
    qApp->installEventFilter(&icons);
    Appearance appearance(detector());
    QToolButton button;
    const QIcon own(QStringLiteral(":/resources/images/ArrowLeft24.png"));
    QVERIFY(!own.isNull());
    button.setIcon(own);
    button.setIconSize(QSize(24, 24));
    button.show();
    QVERIFY(inkLightness(button.icon(), button.iconSize()) < 90);

    appearance.apply(AppearanceChoice::Dark);
    settle();
    QVERIFY(inkLightness(button.icon(), button.iconSize()) > 160);
    appearance.apply(AppearanceChoice::Light);
    settle();
    QCOMPARE(button.icon().cacheKey(), own.cacheKey());
    // Inked again from its own icon, not from the last inking.
    appearance.apply(AppearanceChoice::Dark);
    settle();
    QVERIFY(inkLightness(button.icon(), button.iconSize()) > 160);

    // An icon the program gives later is the one kept from then on.
    const QIcon other(QStringLiteral(":/resources/images/Save24.png"));
    button.setIcon(other);
    appearance.apply(AppearanceChoice::Light);
    settle();
    QCOMPARE(button.icon().cacheKey(), other.cacheKey());
    qApp->removeEventFilter(&icons);
}

void TestAppearance::savingTheOptionsHandsTheChoiceToTheWindow()
{
    MainWindow window;
    Appearance appearance(detector());
    connect(&window, &MainWindow::settingsSaved, &appearance,
            [&appearance](const Settings& saved) { appearance.apply(saved.appearance); });
    auto* options = window.findChild<DiskUsageOptionsForm*>();
    QVERIFY(options);
    auto* choice = options->findChild<QComboBox*>("appearanceComboBox");
    choice->setCurrentIndex(choice->findText(QStringLiteral("Dark")));
    QVERIFY(options->save());
    QCOMPARE(window.currentSettings().appearance, AppearanceChoice::Dark);
    QVERIFY(looksDark(QApplication::palette()));
    settle();
    QVERIFY(looksDark(window.palette()));
}

QTEST_MAIN(TestAppearance)
#include "tst_appearance.moc"
