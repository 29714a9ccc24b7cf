#include "../../NativeText.h"

#include <QCoreApplication>

namespace platform {

QString toQString(const NativeString& text)
{
    return QString::fromStdWString(text);
}

NativeString toNative(const QString& text)
{
    return text.toStdWString();
}

// Always one backslash, even after a folder that ends in a separator: the file
// system reads "C:\\Windows" and "C:/\Windows" alike.
// Qt reads the wide command line; argv holds only its ANSI form.
QStringList arguments(int, char*[])
{
    return QCoreApplication::arguments();
}

// A drive's root ("C:\\") takes no second separator.
QString childPath(const QString& folder, const QString& name)
{
    return folder.endsWith('\\') || folder.endsWith('/') ? folder + name : folder + '\\' + name;
}

} // namespace platform
