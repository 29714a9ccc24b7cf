#pragma once

#include "ChunkedArray.h"
#include "platform/DirectoryListing.h"

#include <QString>

#include <cstdint>
#include <vector>

// Every folder and file of one scan, compactly: nodes in chunked arrays
// addressed by index, names as the system gave them in an arena. A folder's
// children stand one after the other, in the order the listing gave them; the
// scanned folder is node 0. Nothing in it is recursive, so depth costs nothing.
// Built by one thread; once handed over, any number of threads may read it.
class ScanTree {
public:
    using Index = std::uint32_t;
    static constexpr Index none = 0xffffffff;
    static constexpr std::uint8_t noCategory = 0xff;
    // Past this many nodes a tree takes no more (and a node index keeps its
    // high bit free for the map's blocks).
    static constexpr std::size_t maxNodes = 0x7fffffff;

    // What a node's size is taken to be where sizes are compared: its bytes,
    // or the space it takes on disk (a sparse or compressed file's is less).
    enum class Measure : std::uint8_t { Size, OnDisk };

    enum Flag : std::uint8_t {
        Folder = 1,
        Unreadable = 2, // could not be listed, or its listing broke off
        Elsewhere = 4,  // on another file system: shown, not entered
        Excluded = 8,   // left out by the exclusions: counted nowhere
        Link = 16,      // a junction or folder link (Windows)
        Loop = 32,      // the same folder as one above it: not entered
    };

    struct Node {
        std::uint64_t size = 0; // bytes; a folder's whole subtree
        std::uint64_t onDisk = 0;
        union {
            std::uint64_t lastAccessTime = 0; // files: FILETIME ticks
            std::uint64_t ownOnDisk;          // folders: what the folder's own entry takes
        };
        std::uint64_t nameOffset = 0;
        Index parent = none;
        Index firstChild = 0;
        Index childCount = 0;
        std::uint32_t files = 0;    // folders: files in the subtree
        std::uint32_t folders = 0;  // folders: folders in the subtree, itself not counted
        std::uint32_t finished = 0; // folders: how many folders finished before it
        std::uint16_t nameLength = 0;
        std::uint8_t category = noCategory; // files: the first matching category
        std::uint8_t flags = 0;

        [[nodiscard]] bool isFolder() const { return flags & Folder; }
        // A folder that stands as a row of the results (every folder not excluded).
        [[nodiscard]] bool isShownFolder() const { return (flags & (Folder | Excluded)) == Folder; }
        [[nodiscard]] std::uint64_t amount(Measure measure) const
        {
            return measure == Measure::OnDisk ? onDisk : size;
        }
    };

    // The scanned folder as the user gave it, and the name its row shows.
    ScanTree(const QString& rootPath, platform::NativeStringView rootName);
    ScanTree(const ScanTree&) = delete;
    ScanTree& operator=(const ScanTree&) = delete;
    ScanTree(ScanTree&&) = default;
    ScanTree& operator=(ScanTree&&) = default;
    ~ScanTree() = default;

    [[nodiscard]] std::size_t size() const { return nodes.size(); }
    [[nodiscard]] Node& node(Index index) { return nodes[index]; }
    [[nodiscard]] const Node& node(Index index) const { return nodes[index]; }

    // Adds `count` children to a folder that has none yet; returns the first.
    Index addChildren(Index folder, Index count);
    // Forgets a folder's children from `kept` on (a scan cut short): their
    // nodes stay, unreachable.
    void keepChildren(Index folder, Index kept) { nodes[folder].childCount = kept; }
    void setName(Index index, platform::NativeStringView name);
    // What tells a file of several names from others (see
    // platform::DirectoryEntry), noted for files in the order they were
    // added; 0 for any other node.
    void setLinkedFile(Index file, std::uint64_t id);
    [[nodiscard]] std::uint64_t linkedFile(Index file) const;
    // Forgets the numbers no other file of the tree shares: once the tree is
    // built, only those tell a later count anything.
    void keepSharedLinkedFiles();

    [[nodiscard]] platform::NativeStringView name(Index index) const;
    [[nodiscard]] QString nameText(Index index) const;
    // The scanned folder as given; below it, each name joined by the platform.
    [[nodiscard]] const QString& rootPath() const { return root; }
    // The path of a node: each name below the scanned folder joined to it as
    // the platform joins them.
    [[nodiscard]] QString path(Index index) const;
    // The path as the results show it: the scanned folder's with the
    // system's separators.
    [[nodiscard]] QString shownPath(Index index) const;
    // The node a path leads to, by its names below the scanned folder; none
    // when the tree holds no such entry.
    [[nodiscard]] Index locate(const QString& path) const;
    // The node of the path, or of the nearest folder above it the tree holds:
    // the scanned folder at worst.
    [[nodiscard]] Index locateNearest(QString path) const;
    // Adds a child's name to its folder's path; belowRoot when the folder is
    // the scanned one.
    void appendChildPath(QString& folderPath, Index child, bool belowRoot) const;

    // A folder's children that show as rows (folders not excluded), in listing order.
    [[nodiscard]] std::vector<Index> shownSubfolders(Index folder) const;
    // The `limit` largest children by the measure, largest first, as a folder
    // keeps them: its files in listing order, then (unless only files are
    // asked for) its shown subfolders, each before the first strictly smaller
    // one, so that ties keep the earlier in front.
    [[nodiscard]] std::vector<Index> largestChildren(Index folder, std::size_t limit,
                                                     bool filesOnly = false,
                                                     Measure measure = Measure::Size) const;
    // How many of its largest children a folder's summary names.
    static constexpr std::size_t summaryLimit = 10;
    // name:size:kind; for each of the largest children (as largestChildren
    // gives them), then the number of shown subfolders. Names are written as
    // they are: the text is for reading, never to be taken apart again.
    [[nodiscard]] QString childSummary(Index folder, const std::vector<Index>& largest) const;
    // The share of a node in its folder by the measure, in percent cut to two
    // decimals; the scanned folder's is 100.
    [[nodiscard]] double percentage(Index index, Measure measure = Measure::Size) const;
    [[nodiscard]] static double percentage(std::uint64_t child, std::uint64_t parent);

private:
    class Names {
    public:
        std::uint64_t add(platform::NativeStringView name);
        [[nodiscard]] platform::NativeStringView at(std::uint64_t offset, std::size_t length) const;

    private:
        static constexpr unsigned chunkBits = 20; // longer than any name
        std::vector<std::unique_ptr<platform::NativeString::value_type[]>> chunks;
        std::size_t usedInLast = 0;
    };

    struct LinkedFile {
        Index node;
        std::uint64_t id;
    };

    ChunkedArray<Node, 14> nodes;
    Names names;
    std::vector<LinkedFile> linkedFiles; // by node
    QString root;
};
