#include "FileTypeCatalogue.h"

#include "SettingsStore.h"

#include "SettingsLog.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace FileTypeCatalogue {

namespace {

FileTypeCategory category(const QString& name, const QStringList& extensions)
{
    return FileTypeCategory{name, extensions, true, 0, 0};
}

// The built-in categories' icons, in catalogue order.
constexpr std::pair<const char*, const char*> icons[] = {
    {"3D Image Files", "3dImages16"},
    {"Audio Files", "Audio16"},
    {"Backup Files", "Backup16"},
    {"Compressed Files", "CompressedFiles16"},
    {"Disk Image Files", "DiskImage16"},
    {"Document Files", "Document16"},
    {"Font Files", "Font16"},
    {"Installer and Executable Files", "Install16"},
    {"Raster Image Files", "RasterImage16"},
    {"Vector Image Files", "VectorImage16"},
    {"Video Files", "Video16"},
    {"Web Files", "WebFile16"},
};
constexpr qsizetype documentIcon = 5;

QString iconResource(const char* icon)
{
    return QStringLiteral(":/resources/images/%1.png").arg(QLatin1String(icon));
}

} // namespace

QString iconNamed(const QString& name)
{
    for (const auto& [category, icon] : icons) {
        if (name.compare(QLatin1String(category), Qt::CaseInsensitive) == 0)
            return iconResource(icon);
    }
    return {};
}

QString iconAt(qsizetype index)
{
    const bool builtIn = index >= 0 && index < qsizetype(std::size(icons));
    return iconResource(icons[builtIn ? index : documentIcon].second);
}

QList<FileTypeCategory> defaults()
{
    return {
        category("3D Image Files", {".3dm", ".blend", ".max"}),
        category("Audio Files",
                 {".aac", ".aif", ".iff", ".m3u", ".m4a", ".m4p", ".mid", ".mp3", ".mpa", ".oga",
                  ".ogg", ".ogv", ".ogx", ".ra", ".spx", ".wav", ".wma"}),
        category("Backup Files", {".bak", ".old", ".tmp"}),
        category("Compressed Files", {".7z", ".gz", ".rar", ".tar.gz", ".zip", ".zipx"}),
        category("Disk Image Files", {".cue", ".dmg", ".iso", ".toast", ".vcd"}),
        category("Document Files", {".doc", ".docx", ".odt", ".pages", ".pdf", ".rtf", ".tex",
                                    ".txt", ".wpd", ".wps", ".xlr", ".xls", ".xlsx", ".xps"}),
        category("Font Files", {".fnt", ".fon", ".otf", ".ttf"}),
        category("Installer and Executable Files", {".exe", ".msi", ".msix", ".appx"}),
        category("Raster Image Files",
                 {".avif", ".bmp", ".gif", ".heif", ".heic", ".jpg", ".jpeg", ".jpe", ".jif",
                  ".jfif", ".jfi", ".jxl", ".png", ".psd", ".pspimage", ".tif", ".tiff", ".webp"}),
        category("Vector Image Files", {".ai", ".eps", ".ps", ".svg"}),
        category("Video Files", {".3g2", ".3gp", ".asf", ".asx", ".avi", ".flv", ".mkv", ".mov",
                                 ".mp4", ".mpg", ".rm", ".srt", ".swf", ".vob", ".wmv"}),
        category("Web Files", {".asp", ".aspx", ".cer", ".cfm", ".csr", ".css", ".htm", ".html",
                               ".js", ".jsp", ".php", ".rss", ".xhtml"}),
    };
}

QList<FileTypeCategory> load()
{
    QList<FileTypeCategory> catalogue;
    qCDebug(lcSettings) << "readFileTypeData";
    const quint32 stored = SettingsStore::readDword("FileTypeDataCount").value_or(0);
    qCDebug(lcSettings) << "fileTypeDataCount:" << stored;
    // A count larger than the values there are would only read missing ones.
    const auto count = static_cast<qint32>(std::min(stored, SettingsStore::storedValueCount()));
    for (qint32 index = 0; index < count; ++index) {
        if (const auto text =
                SettingsStore::readString(QStringLiteral("FileTypeData%1").arg(index)))
            appendStored(*text, catalogue);
    }
    return catalogue;
}

void appendStored(const QString& text, QList<FileTypeCategory>& catalogue)
{
    const qsizetype semicolon = text.indexOf(';');
    if (semicolon <= 0)
        return;
    FileTypeCategory parsed;
    parsed.checked = text.left(semicolon) != QLatin1String("0");
    QString rest = text.mid(semicolon + 1);

    const qsizetype parenthesis = rest.indexOf('(');
    parsed.name = rest.left(parenthesis).trimmed(); // the whole rest when there is no "("
    rest = rest.mid(parenthesis + 1);

    for (qsizetype comma = rest.indexOf(','); comma > 0; comma = rest.indexOf(',')) {
        parsed.extensions.append(rest.left(comma).trimmed());
        rest = rest.mid(comma + 1).trimmed();
    }
    if (rest.size() >= 2)
        parsed.extensions.append(rest.chopped(1).trimmed());
    catalogue.append(parsed);
}

QString displayText(const FileTypeCategory& category)
{
    return category.name + " (" + category.extensions.join(", ") + ")";
}

QString storedText(const FileTypeCategory& category)
{
    return (category.checked ? "1;" : "0;") + displayText(category);
}

} // namespace FileTypeCatalogue
