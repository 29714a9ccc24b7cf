#include "../NativeText.h"

namespace platform {

// Linux names are bytes; Tallyroot reads them as UTF-8, and bytes that are not
// UTF-8 show as replacement characters.
QString toQString(const NativeString& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

NativeString toNative(const QString& text)
{
    return text.toStdString();
}

// A folder that ends in "/" (the root) takes no second one.
QString childPath(const QString& folder, const QString& name)
{
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

} // namespace platform
