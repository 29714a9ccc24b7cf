#include "../ColourScheme.h"

#include "../DebugLog.h"
#include "ColourSchemeReplies.h"
#include "PortalSettings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QProcess>
#include <QStandardPaths>

#include <array>

namespace platform {

namespace {

const QString appearanceNamespace = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");

// Start-up waits for these answers, so each source gets little time: a portal
// that is still starting or a hung dconf only costs the desktop's choice.
constexpr int portalTimeout = 100;
constexpr int gsettingsTimeout = 100;

ColourScheme portalScheme()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return ColourScheme::Unknown;
    QDBusMessage call =
        QDBusMessage::createMethodCall(PortalSettings::service(), PortalSettings::objectPath(),
                                       PortalSettings::interfaceName, QStringLiteral("Read"));
    call << appearanceNamespace << schemeKey;
    const QDBusMessage reply = bus.call(call, QDBus::Block, portalTimeout);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        debugLog(L"colour scheme: no answer from the settings portal: " +
                 reply.errorName().toStdWString());
        return ColourScheme::Unknown;
    }
    return schemeOfPortalValue(reply.arguments().constFirst());
}

// The GNOME colour scheme, and the GTK theme's name where that says nothing.
// Both are asked at once so that a slow gsettings costs its timeout once.
ColourScheme gnomeScheme()
{
    const QString gsettings = QStandardPaths::findExecutable(QStringLiteral("gsettings"));
    if (gsettings.isEmpty())
        return ColourScheme::Unknown;
    std::array<QProcess, 2> runs;
    const std::array<QString, 2> keys = {schemeKey, QStringLiteral("gtk-theme")};
    for (std::size_t at = 0; at < runs.size(); ++at) {
        runs[at].setStandardErrorFile(QProcess::nullDevice());
        runs[at].start(gsettings, {QStringLiteral("get"),
                                   QStringLiteral("org.gnome.desktop.interface"), keys[at]});
    }
    const QDeadlineTimer deadline(gsettingsTimeout);
    const auto output = [&deadline](QProcess& run) {
        if (!run.waitForFinished(int(deadline.remainingTime())) ||
            run.exitStatus() != QProcess::NormalExit || run.exitCode() != 0)
            return QString();
        return QString::fromUtf8(run.readAllStandardOutput());
    };
    const ColourScheme scheme = firstKnown({[&] { return schemeOfGnomeSetting(output(runs[0])); },
                                            [&] { return schemeOfGtkTheme(output(runs[1])); }});
    for (QProcess& run : runs) {
        if (run.state() != QProcess::NotRunning) {
            run.kill();
            run.waitForFinished(gsettingsTimeout);
        }
    }
    return scheme;
}

} // namespace

ColourScheme desktopColourScheme()
{
    return firstKnown({&portalScheme, &gnomeScheme});
}

void watchColourScheme(QObject* context, const std::function<void()>& changed)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto* portal = new PortalSettings(bus, context);
    QObject::connect(portal, &PortalSettings::SettingChanged, context,
                     [changed](const QString& nameSpace, const QString& key) {
                         if (nameSpace == appearanceNamespace && key == schemeKey)
                             changed();
                     });
}

} // namespace platform
