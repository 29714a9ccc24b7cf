#pragma once

// The cells of a folder row, in the order the folder model holds them.
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
    OnDisk, // bytes on disk, hard-linked files counted once
    Count   // the number of columns
};
} // namespace FolderColumn
