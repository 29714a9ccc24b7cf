#include "PortalSettings.h"

PortalSettings::PortalSettings(const QDBusConnection& bus, QObject* parent)
    : QDBusAbstractInterface(service(), objectPath(), interfaceName, bus, parent)
{}

QString PortalSettings::service()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString PortalSettings::objectPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}
