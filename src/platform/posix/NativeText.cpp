#include "../NativeText.h"

#include <QStringView>

namespace platform {

namespace {

// A byte that is not part of valid UTF-8 becomes a lone low surrogate,
// U+DC80 to U+DCFF, which valid UTF-8 never yields; toNative turns it back
// into the same byte, so every name survives the round trip exactly.
constexpr char16_t escapeBase = 0xDC00;

bool isEscapedByte(char16_t unit)
{
    return unit >= escapeBase + 0x80 && unit <= escapeBase + 0xFF;
}

// The length of the valid UTF-8 sequence at `at`, or 0 when there is none.
std::size_t sequenceLength(const NativeString& text, std::size_t at)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    std::size_t length = 0;
    char32_t code = 0;
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        code = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        code = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        code = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (byte(at + i) & 0x3F);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return overlong || surrogate || code > 0x10FFFF ? 0 : length;
}

} // namespace

// Linux names are bytes; Tallyroot reads them as UTF-8. Bytes that are not
// UTF-8 are kept as escapes (they show as unknown characters), so that the
// name handed back to the system is the one it gave.
QString toQString(const NativeString& text)
{
    // Runs of valid UTF-8 convert in one go; most names are one such run.
    QString result;
    std::size_t runStart = 0;
    const auto flush = [&](std::size_t end) {
        result += QString::fromUtf8(text.data() + runStart, static_cast<qsizetype>(end - runStart));
    };
    for (std::size_t at = 0; at < text.size();) {
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            ++at;
            continue;
        }
        if (const std::size_t length = sequenceLength(text, at)) {
            at += length;
            continue;
        }
        flush(at);
        result += QChar(char16_t(escapeBase + static_cast<unsigned char>(text[at])));
        runStart = ++at;
    }
    if (runStart == 0)
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    flush(text.size());
    return result;
}

NativeString toNative(const QString& text)
{
    NativeString result;
    qsizetype runStart = 0;
    const auto flush = [&](qsizetype end) {
        result += QStringView(text).mid(runStart, end - runStart).toUtf8().toStdString();
    };
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!isEscapedByte(text.at(at).unicode()))
            continue;
        flush(at);
        result += static_cast<char>(text.at(at).unicode() - escapeBase);
        runStart = at + 1;
    }
    if (runStart == 0)
        return text.toStdString();
    flush(text.size());
    return result;
}

// A folder that ends in "/" (the root) takes no second one.
QStringList arguments(int argc, char* argv[])
{
    QStringList given;
    for (int index = 0; index < argc; ++index)
        given << toQString(NativeString(argv[index]));
    return given;
}

QString childPath(const QString& folder, const QString& name)
{
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

} // namespace platform
