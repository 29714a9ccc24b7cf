#include "SettingsFile.h"

#include "FileDescriptor.h"

#include <QString>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace posix {

namespace {

// Larger files are not settings this program wrote; they read as unreadable.
constexpr off_t maximumFileSize = 16 * 1024 * 1024;
constexpr const char* header =
    "# Tallyroot settings: one value a line, name=dword:number or name=sz:text";

std::string toUtf8(const std::wstring& text)
{
    return QString::fromStdWString(text).toStdString();
}

std::wstring fromUtf8(const std::string& bytes)
{
    return QString::fromStdString(bytes).toStdWString();
}

// Names compare without regard to case, as registry value names do.
QString nameKey(const std::string& name)
{
    return QString::fromStdString(name).toCaseFolded();
}

std::string escape(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::optional<std::string> unescape(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        if (++i == text.size())
            return std::nullopt;
        switch (text[i]) {
        case '\\':
            out += '\\';
            break;
        case 'n':
            out += '\n';
            break;
        case 'r':
            out += '\r';
            break;
        default:
            return std::nullopt;
        }
    }
    return out;
}

std::optional<std::uint32_t> parseDword(const std::string& digits)
{
    if (digits.empty() || digits.size() > 10)
        return std::nullopt;
    std::uint64_t value = 0;
    for (char c : digits) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (value > 0xFFFFFFFFu)
        return std::nullopt;
    return static_cast<std::uint32_t>(value);
}

struct Fields {
    std::string name;
    std::string type;
    std::string payload;
};

std::optional<Fields> split(const std::string& line)
{
    if (line.empty() || line.front() == '#')
        return std::nullopt;
    const auto equals = line.find('=');
    if (equals == std::string::npos || equals == 0)
        return std::nullopt;
    const auto colon = line.find(':', equals + 1);
    if (colon == std::string::npos)
        return std::nullopt;
    return Fields{line.substr(0, equals), line.substr(equals + 1, colon - equals - 1),
                  line.substr(colon + 1)};
}

bool readAll(int fd, std::string& content)
{
    struct stat info {};
    if (fstat(fd, &info) != 0 || info.st_size > maximumFileSize)
        return false;
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return false;
        if (got == 0)
            return true;
        content.append(buffer, static_cast<std::size_t>(got));
        if (content.size() > static_cast<std::size_t>(maximumFileSize))
            return false;
    }
}

bool writeAll(int fd, const std::string& content)
{
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t wrote = ::write(fd, content.data() + done, content.size() - done);
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote <= 0)
            return false;
        done += static_cast<std::size_t>(wrote);
    }
    return true;
}

bool makeDirectories(const std::string& dir)
{
    for (std::size_t slash = dir.find('/', 1);; slash = dir.find('/', slash + 1)) {
        const std::string prefix = dir.substr(0, slash);
        if (::mkdir(prefix.c_str(), 0700) != 0 && errno != EEXIST)
            return false;
        if (slash == std::string::npos)
            return true;
    }
}

void syncDirectory(const std::string& dir)
{
    FileDescriptor fd(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.isValid())
        ::fsync(fd.get());
}

// Through a symbolic link: the file it leads to is the one replaced.
std::string resolved(const std::string& path)
{
    std::string target = path;
    if (char* real = ::realpath(path.c_str(), nullptr)) {
        target = real;
        std::free(real);
    }
    return target;
}

std::string folderOf(const std::string& path)
{
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".")
                                      : path.substr(0, std::max<std::size_t>(slash, 1));
}

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

std::string baseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

// Where a save writes before it renames: hidden, and named so that nothing
// else is taken for one.
std::string temporaryPattern(const std::string& target)
{
    const std::string folder = folderOf(target);
    return (folder == "/" ? "" : folder) + "/." + baseName(target) + ".tmp-XXXXXX";
}

bool startsWithHeader(int folder, const char* name)
{
    FileDescriptor fd(::openat(folder, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    std::string first(std::string_view(header).size(), '\0');
    return fd.isValid() && ::read(fd.get(), first.data(), first.size()) == ssize_t(first.size()) &&
           first == header;
}

// Whether a name is one a save cut short may have left: this version's, or
// an earlier one's (the file's name, a dot and mkstemp's six letters and
// digits, holding settings).
bool isTemporary(std::string_view name, const std::string& base, int folder)
{
    const std::string hidden = "." + base + ".tmp-";
    if (name.size() == hidden.size() + 6 && name.substr(0, hidden.size()) == hidden)
        return true;
    const std::string earlier = base + ".";
    if (name.size() != earlier.size() + 6 || name.substr(0, earlier.size()) != earlier)
        return false;
    const std::string_view suffix = name.substr(earlier.size());
    // A word such as "backup" is someone's copy, not six random characters.
    const bool word =
        std::all_of(suffix.begin(), suffix.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    return !word && startsWithHeader(folder, std::string(name).c_str());
}

// A save cut short (the process killed between writing its temporary file
// and renaming it) leaves the temporary behind; one ten minutes old belongs
// to no save any more.
void removeStaleTemporaries(const std::string& target)
{
    constexpr std::time_t stale = 600;
    const std::string base = baseName(target);
    const std::unique_ptr<DIR, DirCloser> dir(::opendir(folderOf(target).c_str()));
    if (!dir)
        return;
    const int folder = ::dirfd(dir.get());
    const std::time_t now = std::time(nullptr);
    while (const dirent* entry = ::readdir(dir.get())) {
        struct stat info {};
        if (isTemporary(entry->d_name, base, folder) &&
            ::fstatat(folder, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(info.st_mode) && now - info.st_mtime > stale)
            ::unlinkat(folder, entry->d_name, 0);
    }
}

} // namespace

SettingsFile::SettingsFile(std::string path)
    : filePath(std::move(path))
{}

bool SettingsFile::load()
{
    lines.clear();
    lineOfName.clear();
    removeStaleTemporaries(resolved(filePath));
    FileDescriptor fd(::open(filePath.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd.isValid()) {
        if (errno != ENOENT)
            return false;
        lines.emplace_back(header);
        return true;
    }
    std::string content;
    if (!readAll(fd.get(), content))
        return false;
    std::size_t start = 0;
    while (start < content.size()) {
        auto end = content.find('\n', start);
        if (end == std::string::npos)
            end = content.size();
        std::string line = content.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(std::move(line));
        index(lines.size() - 1);
        start = end + 1;
    }
    return true;
}

// A later line of the same value overrides an earlier one.
void SettingsFile::index(std::size_t line)
{
    if (const auto fields = split(lines[line]))
        lineOfName.insert(nameKey(fields->name), line);
}

bool SettingsFile::save() const
{
    const std::string target = resolved(filePath);
    const std::string dir = folderOf(target);
    if (dir != "." && dir != "/" && !makeDirectories(dir))
        return false;

    std::string content;
    for (const auto& line : lines)
        content += line + '\n';

    std::string temporary = temporaryPattern(target);
    FileDescriptor fd(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!fd.isValid())
        return false;
    struct stat existing {};
    const bool keepMode = ::stat(target.c_str(), &existing) == 0;
    const bool written = (!keepMode || ::fchmod(fd.get(), existing.st_mode & 07777) == 0) &&
                         writeAll(fd.get(), content) && ::fsync(fd.get()) == 0 && fd.close();
    if (!written || ::rename(temporary.c_str(), target.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    syncDirectory(dir);
    return true;
}

std::optional<std::size_t> SettingsFile::lastLineOf(const std::wstring& name) const
{
    const auto found = lineOfName.constFind(QString::fromStdWString(name).toCaseFolded());
    if (found == lineOfName.constEnd())
        return std::nullopt;
    return found.value();
}

std::optional<SettingsFile::Entry> SettingsFile::find(const std::wstring& name) const
{
    const auto index = lastLineOf(name);
    if (!index)
        return std::nullopt;
    const auto fields = split(lines[*index]);
    return Entry{fields->type, fields->payload};
}

std::optional<std::uint32_t> SettingsFile::dword(const std::wstring& name) const
{
    const auto entry = find(name);
    if (!entry || entry->type != "dword")
        return std::nullopt;
    return parseDword(entry->payload);
}

std::optional<std::wstring> SettingsFile::text(const std::wstring& name) const
{
    const auto entry = find(name);
    if (!entry || entry->type != "sz")
        return std::nullopt;
    const auto raw = unescape(entry->payload);
    if (!raw)
        return std::nullopt;
    return fromUtf8(*raw);
}

void SettingsFile::setDword(const std::wstring& name, std::uint32_t value)
{
    set(name, toUtf8(name) + "=dword:" + std::to_string(value));
}

void SettingsFile::setText(const std::wstring& name, const std::wstring& text)
{
    set(name, toUtf8(name) + "=sz:" + escape(toUtf8(text)));
}

void SettingsFile::set(const std::wstring& name, const std::string& line)
{
    if (const auto found = lastLineOf(name)) {
        lines[*found] = line;
        return;
    }
    lines.push_back(line);
    index(lines.size() - 1);
}

} // namespace posix
