#include "ColourSchemeReplies.h"

#include <QDBusArgument>
#include <QDBusVariant>

namespace platform {

namespace {

// gsettings prints a string value in single quotes and ends with a newline.
QString unquoted(const QString& output)
{
    QString text = output.trimmed();
    if (text.size() >= 2 && text.startsWith(QLatin1Char('\'')) && text.endsWith(QLatin1Char('\'')))
        text = text.mid(1, text.size() - 2);
    return text;
}

// A reply's variants arrive as QDBusVariant, or as a QDBusArgument of
// signature "v" when Qt could not tell the type in advance.
QVariant unwrapped(QVariant value)
{
    // A guard against a reply of endless nesting; real ones have two levels.
    for (int level = 0; level < 8; ++level) {
        if (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
            value = qvariant_cast<QDBusVariant>(value).variant();
        } else if (value.metaType() == QMetaType::fromType<QDBusArgument>()) {
            const auto argument = qvariant_cast<QDBusArgument>(value);
            if (argument.currentType() != QDBusArgument::VariantType)
                return {};
            QDBusVariant inner;
            argument >> inner;
            value = inner.variant();
        } else {
            return value;
        }
    }
    return {};
}

} // namespace

ColourScheme schemeOfPortalValue(const QVariant& value)
{
    const QVariant number = unwrapped(value);
    if (number.metaType() != QMetaType::fromType<uint>())
        return ColourScheme::Unknown;
    switch (number.toUInt()) {
    case 1:
        return ColourScheme::Dark;
    case 2:
        return ColourScheme::Light;
    default:
        return ColourScheme::Unknown;
    }
}

ColourScheme schemeOfGnomeSetting(const QString& output)
{
    const QString value = unquoted(output);
    if (value == QLatin1String("prefer-dark"))
        return ColourScheme::Dark;
    if (value == QLatin1String("prefer-light"))
        return ColourScheme::Light;
    return ColourScheme::Unknown;
}

ColourScheme schemeOfGtkTheme(const QString& output)
{
    const QString name = unquoted(output);
    if (name.isEmpty())
        return ColourScheme::Unknown;
    return name.endsWith(QLatin1String("-dark"), Qt::CaseInsensitive) ? ColourScheme::Dark
                                                                      : ColourScheme::Light;
}

ColourScheme firstKnown(std::initializer_list<std::function<ColourScheme()>> sources)
{
    for (const auto& source : sources) {
        if (const ColourScheme scheme = source(); scheme != ColourScheme::Unknown)
            return scheme;
    }
    return ColourScheme::Unknown;
}

} // namespace platform
