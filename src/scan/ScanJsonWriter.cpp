#include "ScanJsonWriter.h"

#include "ScanFile.h"
#include "platform/NativeText.h"

#include <QDir>
#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>
#include <charconv>
#include <functional>
#include <vector>

namespace {

QByteArray compact(const QJsonArray& array)
{
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

QByteArray compact(const QJsonValue& value)
{
    // A lone value is written as the one element of an array, without its brackets.
    const QByteArray array = compact(QJsonArray{value});
    return array.mid(1, array.size() - 2);
}

char hexDigit(unsigned value)
{
    return "0123456789abcdef"[value & 0xf];
}

char* writeEscape(char* out, char16_t unit)
{
    *out++ = '\\';
    *out++ = 'u';
    for (int shift = 12; shift >= 0; shift -= 4)
        *out++ = hexDigit(unsigned(unit) >> shift);
    return out;
}

char* writeUtf8(char* out, char32_t code)
{
    if (code < 0x800) {
        *out++ = char(0xc0 | (code >> 6));
    } else if (code < 0x10000) {
        *out++ = char(0xe0 | (code >> 12));
        *out++ = char(0x80 | ((code >> 6) & 0x3f));
    } else {
        *out++ = char(0xf0 | (code >> 18));
        *out++ = char(0x80 | ((code >> 12) & 0x3f));
        *out++ = char(0x80 | ((code >> 6) & 0x3f));
    }
    *out++ = char(0x80 | (code & 0x3f));
    return out;
}

// The escape of a character JSON names, or 0.
char shortEscape(char16_t code)
{
    switch (code) {
    case '"':
        return '"';
    case '\\':
        return '\\';
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}

void appendNumber(QByteArray& out, std::uint64_t number)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out.append(digits, end - digits);
}

// Most names need no escape and no conversion: their units go out as they are.
bool plainAscii(platform::NativeStringView name)
{
    return std::all_of(name.begin(), name.end(), [](auto unit) {
        return unit >= 0x20 && unit < 0x7f && unit != '"' && unit != '\\';
    });
}

// Past this much, what was gathered goes out to the device.
constexpr qsizetype flushAt = 1 << 20;

// A full disk shows as a short write, not as an error.
bool writeAll(QIODevice& device, const QByteArray& bytes)
{
    return device.write(bytes) == bytes.size();
}

// A JSON array too large to hold: `fill` appends the elements to what it is
// given and hands that over with writeWhenFull() as it grows. False when the
// device took not all of it.
bool writeArray(QIODevice& device, const std::function<bool(QByteArray&)>& fill)
{
    QByteArray out;
    out.reserve(2 * flushAt);
    out += '[';
    if (!fill(out))
        return false;
    out += ']';
    return writeAll(device, out);
}

// Hands what was gathered to the device once there is enough of it.
bool writeWhenFull(QIODevice& device, QByteArray& out)
{
    if (out.size() < flushAt)
        return true;
    if (!writeAll(device, out))
        return false;
    out.truncate(0); // keeps its room
    return true;
}

} // namespace

// As Qt's JSON writer quotes a string, byte for byte, so that the output stays
// the same as a QJsonDocument of the same values: control characters escaped,
// the rest as UTF-8, and a surrogate without its pair as \u escape. Written
// straight into room made for the longest outcome, six bytes a unit.
void ScanJsonWriter::appendString(QByteArray& out, QStringView text)
{
    out += '"';
    appendEscaped(out, text);
    out += '"';
}

void ScanJsonWriter::appendEscaped(QByteArray& out, QStringView text)
{
    const qsizetype start = out.size();
    out.resize(start + 6 * text.size());
    char* cursor = out.data() + start;
    const char16_t* unit = text.utf16();
    const char16_t* const end = unit + text.size();
    for (; unit != end; ++unit) {
        const char16_t code = *unit;
        if (code >= 0x20 && code < 0x80 && code != '"' && code != '\\') {
            *cursor++ = char(code);
        } else if (const char escape = shortEscape(code)) {
            *cursor++ = '\\';
            *cursor++ = escape;
        } else if (code < 0x20) {
            cursor = writeEscape(cursor, code);
        } else if (QChar::isHighSurrogate(code) && unit + 1 != end &&
                   QChar::isLowSurrogate(unit[1])) {
            cursor = writeUtf8(cursor, QChar::surrogateToUcs4(code, unit[1]));
            ++unit;
        } else if (QChar::isSurrogate(code)) {
            cursor = writeEscape(cursor, code);
        } else {
            cursor = writeUtf8(cursor, code);
        }
    }
    out.truncate(cursor - out.constData());
}

void ScanJsonWriter::appendEscapedName(QByteArray& out, platform::NativeStringView name)
{
    if (!plainAscii(name))
        return appendEscaped(out, platform::toQString(platform::NativeString(name)));
    const qsizetype start = out.size();
    out.resize(start + qsizetype(name.size()));
    std::transform(name.begin(), name.end(), out.data() + start,
                   [](auto unit) { return char(unit); });
}

ScanJsonWriter::ScanJsonWriter(const QString& scanPath, const ScanResult& result)
    : scanPath(scanPath)
    , result(result)
{}

bool ScanJsonWriter::write(QIODevice& device) const
{
    bool written = writeAll(device, "{\"biggestFiles\":" + biggestFiles() +
                                        ",\"categories\":" + categories() + ",\"folders\":");
    written = written && writeFolders(device);
    const QByteArray middle =
        ",\"format\":" + QByteArray::number(ScanFile::formatVersion) +
        ",\"host\":" + compact(QJsonValue(result.host)) +
        ",\"itemsScanned\":" + QByteArray::number(result.itemsScanned) +
        ",\"path\":" + compact(QJsonValue(scanPath)) +
        ",\"scanned\":" + compact(QJsonValue(result.scannedAt.toString(Qt::ISODate))) +
        ",\"totalSubFolders\":" + QByteArray::number(result.totalSubFolders) + ",\"tree\":";
    written = written && writeAll(device, middle) && writeTree(device);
    const QByteArray rest =
        ",\"unreadable\":" + compact(QJsonArray::fromStringList(result.unreadable)) + "}";
    return written && writeAll(device, rest);
}

// One folder's object, its keys in alphabetical order.
void ScanJsonWriter::appendFolder(QByteArray& out, ScanTree::Index folder, int depth,
                                  const QByteArray& escapedPath) const
{
    const ScanTree& tree = *result.tree;
    const ScanTree::Node& node = tree.node(folder);
    out += "{\"depth\":";
    appendNumber(out, std::uint64_t(depth));
    out += ",\"files\":";
    appendNumber(out, node.files);
    out += ",\"folders\":";
    appendNumber(out, node.folders);
    out += ",\"index\":";
    appendNumber(out, node.finished);
    const std::vector<ScanTree::Index> largest =
        tree.largestChildren(folder, ScanTree::summaryLimit);
    // The same children as maxData names, as data: a name may hold ':' and ';'.
    out += ",\"largestChildren\":[";
    for (std::size_t rank = 0; rank < largest.size(); ++rank) {
        const ScanTree::Node& child = tree.node(largest[rank]);
        out += rank == 0 ? "{\"kind\":" : ",{\"kind\":";
        out += child.isFolder() ? "\"folder\"" : "\"file\"";
        out += ",\"name\":\"";
        appendEscapedName(out, tree.name(largest[rank]));
        out += "\",\"size\":";
        appendNumber(out, child.size);
        out += '}';
    }
    out += "],\"maxData\":\"";
    appendSummary(out, folder, largest);
    out += "\",\"name\":\"";
    appendEscapedName(out, tree.name(folder));
    out += "\",\"onDisk\":";
    appendNumber(out, node.onDisk);
    out += ",\"path\":\"" + escapedPath + '"';
    out += ",\"percentage\":" +
           QByteArray::number(tree.percentage(folder), 'g', QLocale::FloatingPointShortest);
    out += ",\"size\":";
    appendNumber(out, node.size);
    out += ",\"sizeText\":";
    appendString(out, DiskUsageGlobal::sizeText(double(node.size)));
    out += '}';
}

// The folder's child summary (ScanTree::childSummary), escaped as it is made:
// each name on its own, which escapes the same as the whole, as the ':' after
// a name ends whatever the name's last units were.
void ScanJsonWriter::appendSummary(QByteArray& out, ScanTree::Index folder,
                                   const std::vector<ScanTree::Index>& largest) const
{
    const ScanTree& tree = *result.tree;
    for (ScanTree::Index child : largest) {
        appendEscapedName(out, tree.name(child));
        out += ':';
        appendNumber(out, tree.node(child).size);
        out += tree.node(child).isFolder() ? ":1;" : ":0;";
    }
    appendNumber(out, tree.shownSubfolders(folder).size());
}

// Pre-order, children in listing order. The path is kept escaped and grows
// and shrinks with the walk, so a deep tree costs no more than its output.
bool ScanJsonWriter::writeFolders(QIODevice& device) const
{
    if (!result.tree)
        return writeAll(device, "[]");
    const ScanTree& tree = *result.tree;
    return writeArray(device, [&](QByteArray& out) {
        struct Pending {
            ScanTree::Index folder;
            int depth;
        };
        std::vector<Pending> pending{{0, 0}};
        std::vector<qsizetype> pathEnds; // the path's length at each depth
        QByteArray path;
        while (!pending.empty()) {
            const Pending next = pending.back();
            pending.pop_back();
            if (next.depth == 0) {
                appendEscaped(path, tree.shownPath(0));
                appendFolder(out, 0, 0, path);
                path.clear();
                appendEscaped(path, tree.rootPath());
            } else {
                path.truncate(pathEnds[std::size_t(next.depth - 1)]);
                appendChildPath(path, next.folder, next.depth == 1);
                out += ',';
                appendFolder(out, next.folder, next.depth, path);
            }
            pathEnds.resize(std::size_t(next.depth) + 1);
            pathEnds.back() = path.size();
            const std::vector<ScanTree::Index> children = tree.shownSubfolders(next.folder);
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                pending.push_back({*child, next.depth + 1});
            if (!writeWhenFull(device, out))
                return false;
        }
        return true;
    });
}

// Every entry in walk order (pre-order, children in listing order), flat, so
// that no reader has to nest as deep as the tree: a folder as an object that
// says how many entries after it are its children, a file as an array.
bool ScanJsonWriter::writeTree(QIODevice& device) const
{
    if (!result.tree)
        return writeAll(device, "[]");
    const ScanTree& tree = *result.tree;
    return writeArray(device, [&](QByteArray& out) {
        std::vector<ScanTree::Index> pending{0};
        while (!pending.empty()) {
            const ScanTree::Index entry = pending.back();
            pending.pop_back();
            if (entry != 0)
                out += ',';
            appendEntry(out, entry);
            const ScanTree::Node& node = tree.node(entry);
            if (node.isFolder()) {
                for (ScanTree::Index child = node.firstChild + node.childCount;
                     child-- > node.firstChild;)
                    pending.push_back(child);
            }
            if (!writeWhenFull(device, out))
                return false;
        }
        return true;
    });
}

// A folder: {"children":N,"flags":F,"name":"…","onDisk":B}, with the bytes
// its own entry takes. A file: ["name",size,onDisk,lastAccess], and the number
// it shares with its other names when it has several.
void ScanJsonWriter::appendEntry(QByteArray& out, ScanTree::Index entry) const
{
    const ScanTree& tree = *result.tree;
    const ScanTree::Node& node = tree.node(entry);
    if (node.isFolder()) {
        out += "{\"children\":";
        appendNumber(out, node.childCount);
        out += ",\"flags\":";
        appendNumber(out, node.flags);
        out += ",\"name\":\"";
        appendEscapedName(out, tree.name(entry));
        out += "\",\"onDisk\":";
        appendNumber(out, node.ownOnDisk);
        out += '}';
        return;
    }
    out += "[\"";
    appendEscapedName(out, tree.name(entry));
    out += "\",";
    appendNumber(out, node.size);
    out += ',';
    appendNumber(out, node.onDisk);
    out += ',';
    appendNumber(out, node.lastAccessTime);
    if (const std::uint64_t linked = tree.linkedFile(entry)) {
        out += ',';
        appendNumber(out, linked);
    }
    out += ']';
}

// As ScanTree::appendChildPath, escaped: the scanned folder's path decides
// whether a separator comes between, below it one always does.
void ScanJsonWriter::appendChildPath(QByteArray& escapedPath, ScanTree::Index child,
                                     bool belowRoot) const
{
    const ScanTree& tree = *result.tree;
    if (belowRoot) {
        escapedPath.clear();
        appendEscaped(escapedPath, platform::childPath(tree.rootPath(), tree.nameText(child)));
        return;
    }
    const QChar separator = QDir::separator();
    appendEscaped(escapedPath, QStringView(&separator, 1));
    appendEscapedName(escapedPath, tree.name(child));
}

QByteArray ScanJsonWriter::biggestFiles() const
{
    QJsonArray files;
    for (const auto& file : result.biggestFiles) {
        files.append(QJsonObject{{"filePath", file.filePath},
                                 {"size", qint64(file.size)},
                                 {"onDisk", qint64(file.onDisk)},
                                 {"lastAccessTime", qint64(file.lastAccessTime)}});
    }
    return compact(files);
}

QByteArray ScanJsonWriter::categories() const
{
    QJsonArray categories;
    for (int index = 0; index < result.categories.size(); ++index) {
        const FileTypeCategory& category = result.categories[index];
        QJsonArray files;
        for (const auto& file : result.dataFiles.value(index)) {
            files.append(QJsonObject{{"fileName", file.fileName},
                                     {"sizeText", file.sizeText},
                                     {"lastAccessText", file.lastAccessText},
                                     {"filePath", QDir::toNativeSeparators(file.filePath)},
                                     {"size", file.size},
                                     {"index", file.index}});
        }
        const bool shown = category.checked;
        const double mebibytes = double(category.totalSize) * 9.5367431640625e-7;
        categories.append(QJsonObject{
            {"name", category.name},
            {"extensions", QJsonArray::fromStringList(category.extensions)},
            {"checked", category.checked},
            {"total", category.totalSize},
            {"sizeText", shown ? QJsonValue(DiskUsageGlobal::sizeText(double(category.totalSize)))
                               : QJsonValue()},
            {"mebibytes", shown ? QJsonValue(mebibytes) : QJsonValue()},
            {"files", files}});
    }
    return compact(categories);
}
