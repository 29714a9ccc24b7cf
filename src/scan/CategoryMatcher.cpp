#include "CategoryMatcher.h"

#include "DiskUsageGlobal.h"
#include "platform/NativeText.h"

namespace {

bool isAscii(const QString& text)
{
    for (QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

} // namespace

CategoryMatcher::CategoryMatcher(const QList<FileTypeCategory>& catalogue)
{
    for (int index = 0; index < catalogue.size(); ++index) {
        if (!catalogue[index].checked)
            continue;
        for (const QString& extension : catalogue[index].extensions)
            add(extension.toCaseFolded(), index);
    }
}

void CategoryMatcher::add(const QString& folded, int category)
{
    Indexes& indexes = byFoldedKey[folded];
    if (!indexes.isEmpty() && indexes.constLast() == category)
        return; // a category counts a file once, however often it lists the extension
    indexes.append(category);
    if (isAscii(folded))
        byAsciiKey[folded.toStdString()].append(category);
}

const CategoryMatcher::Indexes* CategoryMatcher::match(platform::NativeStringView fileName) const
{
    const auto dot = fileName.find('.');
    std::string key = ".";
    if (dot != platform::NativeStringView::npos) {
        key.clear();
        for (auto c = fileName.begin() + static_cast<std::ptrdiff_t>(dot); c != fileName.end();
             ++c) {
            const auto code =
                static_cast<std::make_unsigned_t<platform::NativeString::value_type>>(*c);
            if (code >= 0x80)
                return match(platform::toQString(platform::NativeString(fileName)));
            key += static_cast<char>(code >= 'A' && code <= 'Z' ? code + ('a' - 'A') : code);
        }
    }
    const auto found = byAsciiKey.find(key);
    return found == byAsciiKey.end() ? nullptr : &found->second;
}

const CategoryMatcher::Indexes* CategoryMatcher::match(const QString& fileName) const
{
    const auto found =
        byFoldedKey.constFind(DiskUsageGlobal::extensionKey(fileName).toCaseFolded());
    return found == byFoldedKey.constEnd() ? nullptr : &found.value();
}
