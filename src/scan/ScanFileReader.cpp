#include "ScanFileReader.h"

#include "platform/NativeText.h"

#include <climits>
#include <type_traits>

namespace {

// How often, in entries, a cancel is looked for.
constexpr int cancelCheck = 1 << 16;

// Names are written as UTF-8, which on Linux is what the system gave, as it
// stands; Windows takes them as UTF-16. (A template, so that the branch for
// the other system is not compiled.)
template <typename Unit = platform::NativeString::value_type>
void setNameFromUtf8(ScanTree& tree, ScanTree::Index node, const std::string& name)
{
    if constexpr (std::is_same_v<Unit, char>)
        tree.setName(node, std::basic_string_view<Unit>(name));
    else
        tree.setName(node, platform::toNative(QString::fromStdString(name)));
}

} // namespace

ScanFileReader::ScanFileReader(QIODevice& device, const std::atomic<bool>* cancelled)
    : json(device)
    , cancel(cancelled)
{}

bool ScanFileReader::stop(Failure why)
{
    if (failed == Failure::None)
        failed = why;
    return false;
}

std::optional<ScanResult> ScanFileReader::read()
{
    if (json.peek() != '{') {
        stop(json.failed() ? Failure::Damaged : Failure::NotAScan);
        return std::nullopt;
    }
    json.expect('{');
    bool more = !json.take('}');
    while (more && failed == Failure::None) {
        if (!json.readString(text) || !json.expect(':'))
            break;
        if (!readKey(std::string(text))) // copied: the value is read into `text`
            break;
        more = json.nextItem('}');
    }
    if (failed == Failure::None && json.failed())
        stop(json.failure() == JsonPull::Problem::CutShort ? Failure::CutShort : Failure::Damaged);
    if (failed == Failure::None && !tree)
        stop(sawFolders ? Failure::OlderFormat : Failure::NotAScan);
    if (failed != Failure::None)
        return std::nullopt;
    tree->keepSharedLinkedFiles();
    result.itemsScanned = items;
    return std::move(result);
}

// The keys come in alphabetical order, so the head (the catalogue, the
// format, the path) is known before the tree; any other is passed over.
bool ScanFileReader::readKey(const std::string& key)
{
    std::uint64_t number = 0;
    if (key == "categories")
        return readCategories();
    if (key == "format") {
        if (!json.readNumber(number))
            return false;
        version = int(std::min<std::uint64_t>(number, INT_MAX));
        return version <= ScanFile::formatVersion || stop(Failure::NewerFormat);
    }
    if (key == "host" || key == "path" || key == "scanned") {
        if (!json.readString(text))
            return false;
        const QString value = QString::fromStdString(text);
        if (key == "host")
            result.host = value;
        else if (key == "path")
            rootPath = value;
        else
            result.scannedAt = QDateTime::fromString(value, Qt::ISODate);
        return true;
    }
    if (key == "tree") {
        if (version == 0 || rootPath.isEmpty())
            return stop(Failure::NotAScan);
        return readTree();
    }
    sawFolders = sawFolders || key == "folders";
    return json.skipValue();
}

bool ScanFileReader::readCategories()
{
    if (!json.expect('['))
        return false;
    if (json.take(']'))
        return true;
    do {
        if (!readCategory())
            return false;
    } while (json.nextItem(']'));
    return !json.failed();
}

// Only what the count needs: the name, the extensions and whether it takes part.
bool ScanFileReader::readCategory()
{
    FileTypeCategory category;
    if (!json.expect('{'))
        return false;
    bool more = !json.take('}');
    while (more) {
        if (!json.readString(text) || !json.expect(':'))
            return false;
        if (text == "name") {
            if (!json.readString(text))
                return false;
            category.name = QString::fromStdString(text);
        } else if (text == "checked") {
            category.checked = json.peek() == 't';
            json.skipValue();
        } else if (text == "extensions") {
            if (!json.expect('['))
                return false;
            for (bool item = !json.take(']'); item; item = json.nextItem(']')) {
                if (!json.readString(text))
                    return false;
                category.extensions << QString::fromStdString(text);
            }
        } else if (!json.skipValue()) {
            return false;
        }
        more = json.nextItem('}');
    }
    result.categories << category;
    return !json.failed();
}

// The scanned folder first, then every entry below it in walk order.
bool ScanFileReader::readTree()
{
    Folder root;
    if (!json.expect('[') || !readFolder(root))
        return false;
    auto built = std::make_shared<ScanTree>(rootPath, platform::NativeStringView());
    tree = built.get();
    result.tree = std::move(built);
    tally.emplace(result);
    std::vector<Frame> stack;
    if (!enter(0, root, stack))
        return false;
    while (!stack.empty()) {
        if (!readEntry(stack))
            return false;
    }
    const ScanTree::Node& scanned = tree->node(0);
    int subfolders = 0;
    for (Index child = scanned.firstChild; child < scanned.firstChild + scanned.childCount; ++child)
        subfolders += tree->node(child).isFolder() ? 1 : 0;
    result.totalSubFolders = subfolders + 1;
    return json.expect(']');
}

// The next entry of the innermost open folder, or, when it has them all, its
// end: as the walk meets them, a file is counted, an excluded folder noted,
// any other folder entered.
bool ScanFileReader::readEntry(std::vector<Frame>& stack)
{
    Frame& frame = stack.back();
    if (frame.next == frame.end) {
        const Frame done = frame;
        stack.pop_back();
        finish(done);
        if (!stack.empty())
            stack.back().totals.addSubfolder(done.totals);
        return true;
    }
    if (++items % cancelCheck == 0 && cancel && cancel->load(std::memory_order_relaxed))
        return stop(Failure::Cancelled);
    if (!json.expect(','))
        return false;
    const Index node = frame.next++;
    if (json.peek() == '[')
        return readFile(node, frame.totals);
    Folder folder;
    if (!readFolder(folder))
        return false;
    if (folder.flags & ScanTree::Excluded) {
        ++result.excludedFolders;
        place(node, folder);
        return folder.children == 0 || stop(Failure::Damaged);
    }
    ++frame.totals.folders;
    return enter(node, folder, stack); // invalidates `frame`
}

// {"children":N,"flags":F,"name":"…","onDisk":B}, its keys in any order.
bool ScanFileReader::readFolder(Folder& folder)
{
    if (!json.expect('{'))
        return false;
    bool named = false;
    for (bool more = !json.take('}'); more; more = json.nextItem('}')) {
        if (!json.readString(text) || !json.expect(':'))
            return false;
        if (text == "children" || text == "flags" || text == "onDisk") {
            std::uint64_t& field = text == "children" ? folder.children
                                   : text == "flags"  ? folder.flags
                                                      : folder.onDisk;
            if (!json.readNumber(field))
                return false;
        } else if (text == "name") {
            if (!json.readString(nameText))
                return false;
            named = true;
        } else if (!json.skipValue()) {
            return false;
        }
    }
    if (json.failed())
        return false;
    return (named && (folder.flags & ScanTree::Folder) && folder.flags <= 0xff) ||
           stop(Failure::Damaged);
}

// ["name",size,onDisk,lastAccess] and, for a file of several names, the
// number they share.
bool ScanFileReader::readFile(Index file, FolderTotals& totals)
{
    ScanTree::Node& node = tree->node(file);
    std::uint64_t linked = 0;
    if (!json.expect('[') || !json.readString(nameText) || !json.expect(',') ||
        !json.readNumber(node.size) || !json.expect(',') || !json.readNumber(node.onDisk) ||
        !json.expect(',') || !json.readNumber(node.lastAccessTime))
        return false;
    if (json.take(',') && !json.readNumber(linked))
        return false;
    if (!json.expect(']'))
        return false;
    setName(file);
    if (linked != 0)
        tree->setLinkedFile(file, linked);
    totals.addFile(node.size, tally->addFile(*tree, file, linked));
    return true;
}

void ScanFileReader::place(Index node, const Folder& folder)
{
    setName(node);
    ScanTree::Node& entry = tree->node(node);
    entry.flags = std::uint8_t(folder.flags);
    entry.ownOnDisk = folder.onDisk;
}

bool ScanFileReader::enter(Index node, const Folder& folder, std::vector<Frame>& stack)
{
    place(node, folder);
    const ScanTree::Node& entry = tree->node(node);
    if (folder.children > ScanTree::maxNodes - tree->size())
        return stop(Failure::Damaged);
    const Index first =
        folder.children > 0 ? tree->addChildren(node, Index(folder.children)) : Index(0);
    if (entry.flags & ScanTree::Unreadable)
        result.unreadable.append(tree->path(node));
    if (entry.flags & ScanTree::Elsewhere)
        result.elsewhere.append(tree->path(node));
    Frame frame{node, first, first + Index(folder.children), {}};
    frame.totals.onDisk = folder.onDisk;
    stack.push_back(frame);
    return true;
}

void ScanFileReader::finish(const Frame& frame)
{
    ScanTree::Node& node = tree->node(frame.folder);
    frame.totals.storeIn(node);
    node.finished = foldersFinished++;
    if (frame.folder == 0)
        frame.totals.storeIn(result);
}

void ScanFileReader::setName(Index node)
{
    setNameFromUtf8(*tree, node, nameText);
}
