#pragma once

// The nine cells of a folder row, in the order the folder model holds them.
namespace FolderColumn {
enum Column {
    Name,
    SizeText,
    Files,
    Folders,
    Size,
    Path,
    Percentage,
    MaxData,
    Index,
    Count // the number of columns
};
} // namespace FolderColumn
