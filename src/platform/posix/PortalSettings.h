#pragma once

#include <QDBusAbstractInterface>
#include <QDBusVariant>

// The desktop portal's settings on the session bus. Its signal is the
// portal's own: connecting to it subscribes to the bus signal, so no string
// names the receiver.
class PortalSettings : public QDBusAbstractInterface {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PortalSettings)

public:
    static constexpr const char* interfaceName = "org.freedesktop.portal.Settings";

    PortalSettings(const QDBusConnection& bus, QObject* parent);

    [[nodiscard]] static QString service();
    [[nodiscard]] static QString objectPath();

signals:
    // Named as on the bus, which is what QtDBus matches it by.
    void SettingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);
};
