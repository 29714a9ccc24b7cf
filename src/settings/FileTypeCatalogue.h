#pragma once

#include "FileTypeCategory.h"

#include <QList>

// The ordered list of file-type categories that data files are sorted into:
// its built-in form, and its stored form in the settings store.
namespace FileTypeCatalogue {

// The twelve built-in categories.
[[nodiscard]] QList<FileTypeCategory> defaults();
// The stored categories; none when nothing is stored.
[[nodiscard]] QList<FileTypeCategory> load();
// Parses one stored "1;Name (.a, .b)" text and appends the category; a text
// without ";" or starting with it appends nothing.
void appendStored(const QString& text, QList<FileTypeCategory>& catalogue);

// The resource of a category's 16-pixel icon, from one table of the built-in
// categories: by name, compared without regard to case, as the options page
// shows it (empty for a name of no built-in category); by place in the
// catalogue, as the data files of a scan show it (the document icon past the
// twelfth). The two agree for the built-in catalogue.
[[nodiscard]] QString iconNamed(const QString& name);
[[nodiscard]] QString iconAt(qsizetype index);

// "Font Files (.fnt, .fon, .otf, .ttf)"
[[nodiscard]] QString displayText(const FileTypeCategory& category);
// "1;" or "0;" followed by the display text.
[[nodiscard]] QString storedText(const FileTypeCategory& category);

} // namespace FileTypeCatalogue
