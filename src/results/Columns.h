#pragma once

// The columns of the result models, in the order each model holds them.

// A folder row of the folder tree.
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
    Change, // while comparing with an older scan: what changed since
    Count   // the number of columns
};
} // namespace FolderColumn

// A row of the biggest files.
namespace BiggestFileColumn {
enum Column { FileName, FileSize, LastAccess, Folder, RawSize, FileOnDisk, Count };
} // namespace BiggestFileColumn

// A row of the data files by category.
namespace CategoryColumn {
enum Column { Category, Total, LastAccess, Path, Mebibytes, CategoryIndex, Count };
} // namespace CategoryColumn

// A row of the search results.
namespace SearchColumn {
enum Column { Name, Folder, Size, Type, Count };
} // namespace SearchColumn
