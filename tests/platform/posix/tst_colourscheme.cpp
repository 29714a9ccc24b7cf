// How the desktop's light or dark choice is read on Linux: the portal's and
// gsettings' answers, the order they are asked in, and how long asking takes.
// The session bus is pointed at nothing and gsettings is a stand-in, so the
// machine's own desktop never decides a result.

#include "platform/ColourScheme.h"
#include "posix/ColourSchemeReplies.h"

#include <QCoreApplication>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using platform::ColourScheme;

Q_DECLARE_METATYPE(platform::ColourScheme)

class TestColourScheme : public QObject {
    Q_OBJECT

private slots:
    void portalValues_data();
    void portalValues();
    void gnomeSettings_data();
    void gnomeSettings();
    void gtkThemes_data();
    void gtkThemes();
    void theFirstKnownAnswerWinsAndLaterSourcesAreNotAsked();
    void withoutAPortalGsettingsDecides_data();
    void withoutAPortalGsettingsDecides();
    void aHungGsettingsDoesNotHoldStartUp();
    void withoutGsettingsNothingIsKnown();

private:
    // A gsettings first on PATH that prints the given outputs for the two
    // keys, exits with `status`, after `delay` seconds.
    void fakeGsettings(const QString& scheme, const QString& theme, int status = 0, int delay = 0);

    QTemporaryDir bin;
};

namespace {

QVariant wrapped(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

} // namespace

void TestColourScheme::portalValues_data()
{
    QTest::addColumn<QVariant>("reply");
    QTest::addColumn<ColourScheme>("scheme");
    // Read gives the value in a variant in a variant; ReadOne in one variant.
    QTest::newRow("Read, dark") << wrapped(wrapped(1u)) << ColourScheme::Dark;
    QTest::newRow("Read, light") << wrapped(wrapped(2u)) << ColourScheme::Light;
    QTest::newRow("Read, no preference") << wrapped(wrapped(0u)) << ColourScheme::Unknown;
    QTest::newRow("ReadOne, dark") << wrapped(1u) << ColourScheme::Dark;
    QTest::newRow("ReadOne, light") << wrapped(2u) << ColourScheme::Light;
    QTest::newRow("a number beyond the three") << wrapped(wrapped(3u)) << ColourScheme::Unknown;
    QTest::newRow("signed, not uint") << wrapped(wrapped(1)) << ColourScheme::Unknown;
    QTest::newRow("a string") << wrapped(wrapped(QStringLiteral("1"))) << ColourScheme::Unknown;
    QTest::newRow("nothing") << QVariant() << ColourScheme::Unknown;
}

void TestColourScheme::portalValues()
{
    QFETCH(QVariant, reply);
    QFETCH(ColourScheme, scheme);
    QCOMPARE(platform::schemeOfPortalValue(reply), scheme);
}

void TestColourScheme::gnomeSettings_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<ColourScheme>("scheme");
    QTest::newRow("dark") << "'prefer-dark'\n" << ColourScheme::Dark;
    QTest::newRow("light") << "'prefer-light'\n" << ColourScheme::Light;
    QTest::newRow("default") << "'default'\n" << ColourScheme::Unknown;
    QTest::newRow("unquoted") << "prefer-dark" << ColourScheme::Dark;
    QTest::newRow("empty") << "" << ColourScheme::Unknown;
    QTest::newRow("an error") << "No such key \"color-scheme\"\n" << ColourScheme::Unknown;
}

void TestColourScheme::gnomeSettings()
{
    QFETCH(QString, output);
    QFETCH(ColourScheme, scheme);
    QCOMPARE(platform::schemeOfGnomeSetting(output), scheme);
}

void TestColourScheme::gtkThemes_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<ColourScheme>("scheme");
    QTest::newRow("Adwaita-dark") << "'Adwaita-dark'\n" << ColourScheme::Dark;
    QTest::newRow("capital Dark") << "'Yaru-Dark'\n" << ColourScheme::Dark;
    QTest::newRow("Adwaita") << "'Adwaita'\n" << ColourScheme::Light;
    QTest::newRow("dark elsewhere in the name") << "'Darkish-blue'\n" << ColourScheme::Light;
    QTest::newRow("quotes only") << "''\n" << ColourScheme::Unknown;
    QTest::newRow("nothing") << "" << ColourScheme::Unknown;
}

void TestColourScheme::gtkThemes()
{
    QFETCH(QString, output);
    QFETCH(ColourScheme, scheme);
    QCOMPARE(platform::schemeOfGtkTheme(output), scheme);
}

void TestColourScheme::theFirstKnownAnswerWinsAndLaterSourcesAreNotAsked()
{
    QStringList asked;
    const auto source = [&asked](const QString& name, ColourScheme answer) {
        return [&asked, name, answer] {
            asked << name;
            return answer;
        };
    };
    QCOMPARE(platform::firstKnown({source("portal", ColourScheme::Unknown),
                                   source("gnome", ColourScheme::Light),
                                   source("gtk", ColourScheme::Dark)}),
             ColourScheme::Light);
    QCOMPARE(asked, QStringList({"portal", "gnome"}));

    asked.clear();
    QCOMPARE(platform::firstKnown(
                 {source("portal", ColourScheme::Dark), source("gnome", ColourScheme::Light)}),
             ColourScheme::Dark);
    QCOMPARE(asked, QStringList({"portal"}));

    asked.clear();
    QCOMPARE(platform::firstKnown(
                 {source("portal", ColourScheme::Unknown), source("gnome", ColourScheme::Unknown)}),
             ColourScheme::Unknown);
    QCOMPARE(asked, QStringList({"portal", "gnome"}));
}

void TestColourScheme::fakeGsettings(const QString& scheme, const QString& theme, int status,
                                     int delay)
{
    QFile script(bin.filePath(QStringLiteral("gsettings")));
    QVERIFY(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
    script.write(QStringLiteral("#!/bin/sh\n"
                                "[ \"$1 $2\" = 'get org.gnome.desktop.interface' ] || exit 9\n"
                                "[ %1 -eq 0 ] || /bin/sleep %1\n"
                                "case \"$3\" in\n"
                                "color-scheme) printf '%s\\n' \"%2\" ;;\n"
                                "gtk-theme) printf '%s\\n' \"%3\" ;;\n"
                                "*) exit 9 ;;\n"
                                "esac\n"
                                "exit %4\n")
                     .arg(delay)
                     .arg(scheme, theme)
                     .arg(status)
                     .toUtf8());
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    qputenv("PATH", QFile::encodeName(bin.path()));
}

void TestColourScheme::withoutAPortalGsettingsDecides_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<QString>("theme");
    QTest::addColumn<int>("status");
    QTest::addColumn<ColourScheme>("expected");
    QTest::newRow("prefer-dark") << "'prefer-dark'"
                                 << "'Adwaita'" << 0 << ColourScheme::Dark;
    QTest::newRow("prefer-light over a dark theme") << "'prefer-light'"
                                                    << "'Adwaita-dark'" << 0 << ColourScheme::Light;
    QTest::newRow("default, then the dark theme") << "'default'"
                                                  << "'Adwaita-dark'" << 0 << ColourScheme::Dark;
    QTest::newRow("default, then a light theme") << "'default'"
                                                 << "'Adwaita'" << 0 << ColourScheme::Light;
    QTest::newRow("gsettings fails") << "'prefer-dark'"
                                     << "'Adwaita-dark'" << 1 << ColourScheme::Unknown;
}

void TestColourScheme::withoutAPortalGsettingsDecides()
{
    QFETCH(QString, scheme);
    QFETCH(QString, theme);
    QFETCH(int, status);
    QFETCH(ColourScheme, expected);
    fakeGsettings(scheme, theme, status);
    QCOMPARE(platform::desktopColourScheme(), expected);
}

void TestColourScheme::aHungGsettingsDoesNotHoldStartUp()
{
    fakeGsettings("'prefer-dark'", "'Adwaita-dark'", 0, 5);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(platform::desktopColourScheme(), ColourScheme::Unknown);
    QVERIFY2(timer.elapsed() < 400, qPrintable(QString::number(timer.elapsed())));
}

void TestColourScheme::withoutGsettingsNothingIsKnown()
{
    QTemporaryDir empty;
    qputenv("PATH", QFile::encodeName(empty.path()));
    QCOMPARE(platform::desktopColourScheme(), ColourScheme::Unknown);
}

int main(int argc, char* argv[])
{
    // Before anything opens the session bus: a bus that is not there stands
    // for a desktop without the portal.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/tallyroot-test-bus");
    QCoreApplication app(argc, argv);
    TestColourScheme test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_colourscheme.moc"
