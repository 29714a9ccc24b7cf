#pragma once

#include "FileTypeCategory.h"

#include <QList>

// The process-wide ordered list of file-type categories: loaded from the
// settings store, edited by the options page, read by the scan engine.
namespace FileTypeCatalogue {

[[nodiscard]] QList<FileTypeCategory>& instance();

// Replaces the list's content with the twelve built-in categories.
void fillDefaults(QList<FileTypeCategory>& catalogue);
// Clears the list and reads the stored categories; true when any was read.
bool load(QList<FileTypeCategory>& catalogue);
// Parses one stored "1;Name (.a, .b)" text and appends the category; a text
// without ";" or starting with it appends nothing.
void appendStored(const QString& text, QList<FileTypeCategory>& catalogue);

// "Font Files (.fnt, .fon, .otf, .ttf)"
[[nodiscard]] QString displayText(const FileTypeCategory& category);
// "1;" or "0;" followed by the display text.
[[nodiscard]] QString storedText(const FileTypeCategory& category);

} // namespace FileTypeCatalogue
