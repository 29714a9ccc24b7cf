#pragma once

#include "platform/DirectoryListing.h"
#include "settings/FileTypeCategory.h"

#include <QHash>
#include <QList>

#include <string>
#include <unordered_map>

// Finds the enabled categories a file name belongs to. Gives the same answer
// as comparing the name's extension key, without regard to case, with every
// extension of every enabled category in order, but with one lookup.
class CategoryMatcher {
public:
    using Indexes = QList<int>;

    explicit CategoryMatcher(const QList<FileTypeCategory>& catalogue);

    // Indexes of the matching categories in catalogue order, or nullptr.
    [[nodiscard]] const Indexes* match(platform::NativeStringView fileName) const;
    [[nodiscard]] const Indexes* match(const QString& fileName) const;

private:
    void add(const QString& extension, int category);

    // Keys are case-folded; those that are plain ASCII also live in a table
    // that ASCII names reach without building a QString.
    QHash<QString, Indexes> byFoldedKey;
    std::unordered_map<std::string, Indexes> byAsciiKey;
};
