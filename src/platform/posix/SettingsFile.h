#pragma once

#include <QHash>
#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace posix {

// The Linux counterpart of the application's registry key: one text file of
// "name=dword:123" and "name=sz:text" lines. Names compare without regard to
// case, as registry value names do. Lines it cannot read are kept as they are,
// so a damaged or hand-edited file loses nothing when a value is written.
class SettingsFile {
public:
    explicit SettingsFile(std::string path);

    // A missing file loads as empty; false when it exists but cannot be read.
    [[nodiscard]] bool load();
    // Writes a temporary file beside the real one and renames it over it, so a
    // crash leaves either the old file or the new one. A symbolic link is
    // written through, and the file keeps its mode.
    [[nodiscard]] bool save() const;
    // How many values the file holds.
    [[nodiscard]] std::size_t valueCount() const { return lineOfName.size(); }

    [[nodiscard]] std::optional<std::uint32_t> dword(const std::wstring& name) const;
    [[nodiscard]] std::optional<std::wstring> text(const std::wstring& name) const;
    void setDword(const std::wstring& name, std::uint32_t value);
    void setText(const std::wstring& name, const std::wstring& text);

    [[nodiscard]] const std::string& path() const { return filePath; }

private:
    struct Entry {
        std::string type;
        std::string payload;
    };
    [[nodiscard]] std::optional<std::size_t> lastLineOf(const std::wstring& name) const;
    [[nodiscard]] std::optional<Entry> find(const std::wstring& name) const;
    void set(const std::wstring& name, const std::string& line);
    void index(std::size_t line);

    std::string filePath;
    std::vector<std::string> lines;
    // The last line of each value, by its case-folded name.
    QHash<QString, std::size_t> lineOfName;
};

} // namespace posix
