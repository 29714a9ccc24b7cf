#include "JsonPull.h"

#include <QChar>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t windowSize = 1 << 20;

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

void appendUtf8(std::string& text, char32_t code)
{
    if (code < 0x80) {
        text += char(code);
    } else if (code < 0x800) {
        text += char(0xc0 | (code >> 6));
        text += char(0x80 | (code & 0x3f));
    } else if (code < 0x10000) {
        text += char(0xe0 | (code >> 12));
        text += char(0x80 | ((code >> 6) & 0x3f));
        text += char(0x80 | (code & 0x3f));
    } else {
        text += char(0xf0 | (code >> 18));
        text += char(0x80 | ((code >> 12) & 0x3f));
        text += char(0x80 | ((code >> 6) & 0x3f));
        text += char(0x80 | (code & 0x3f));
    }
}

} // namespace

JsonPull::JsonPull(QIODevice& device)
    : source(device)
    , window(windowSize)
{}

void JsonPull::fail(Problem what)
{
    if (problem == Problem::None)
        problem = what;
}

bool JsonPull::ensure(std::size_t count)
{
    while (available() < count && !ended && !failed()) {
        if (position > 0) {
            std::memmove(window.data(), window.data() + position, available());
            consumed += qint64(position);
            filled -= position;
            position = 0;
        }
        if (filled == window.size())
            window.resize(window.size() * 2);
        const qint64 got = source.read(window.data() + filled, qint64(window.size() - filled));
        if (got < 0)
            fail(Problem::Unreadable);
        if (got <= 0)
            ended = true;
        else
            filled += std::size_t(got);
    }
    return available() > 0;
}

char JsonPull::peek()
{
    while (!failed() && ensure(1)) {
        const char c = window[position];
        if (!isSpace(c))
            return c;
        ++position;
    }
    return 0;
}

bool JsonPull::take(char expected)
{
    if (peek() != expected || failed())
        return false;
    ++position;
    return true;
}

bool JsonPull::expect(char expected)
{
    if (take(expected))
        return true;
    fail(peek() == 0 ? Problem::CutShort : Problem::Malformed);
    return false;
}

bool JsonPull::nextItem(char closing)
{
    if (take(','))
        return true;
    expect(closing);
    return false;
}

// Runs without an escape are copied as they are, a window at a time.
bool JsonPull::readString(std::string& text)
{
    text.clear();
    if (!expect('"'))
        return false;
    for (;;) {
        if (!ensure(1)) {
            fail(Problem::CutShort);
            return false;
        }
        const char* start = window.data() + position;
        const char* end = window.data() + filled;
        const char* stop = std::find_if(start, end, [](char c) {
            return c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
        });
        text.append(start, stop);
        position += std::size_t(stop - start);
        if (stop == end)
            continue;
        if (*stop == '"') {
            ++position;
            return true;
        }
        if (*stop != '\\' || !readEscape(text)) {
            fail(Problem::Malformed);
            return false;
        }
    }
}

bool JsonPull::readEscape(std::string& text)
{
    // The backslash, its letter, and for \u four digits and maybe a low surrogate.
    ensure(12);
    if (available() < 2)
        return false;
    const char letter = window[position + 1];
    position += 2;
    static constexpr char from[] = "\"\\/bfnrt";
    static constexpr char to[] = "\"\\/\b\f\n\r\t";
    if (const char* found = std::strchr(from, letter); found && letter) {
        text += to[found - from];
        return true;
    }
    auto unit = [this](std::size_t at) {
        int value = 0;
        for (std::size_t digit = 0; digit < 4; ++digit) {
            const int hex = at + digit < filled ? hexValue(window[at + digit]) : -1;
            if (hex < 0)
                return -1;
            value = value * 16 + hex;
        }
        return value;
    };
    const int high = letter == 'u' ? unit(position) : -1;
    if (high < 0)
        return false;
    position += 4;
    char32_t code = char32_t(high);
    if (QChar::isHighSurrogate(code) && available() >= 6 && window[position] == '\\' &&
        window[position + 1] == 'u') {
        const int low = unit(position + 2);
        if (low >= 0 && QChar::isLowSurrogate(char32_t(low))) {
            code = QChar::surrogateToUcs4(char16_t(high), char16_t(low));
            position += 6;
        }
    }
    // A lone surrogate has no UTF-8 of its own: it stands as U+FFFD, as Qt reads it.
    appendUtf8(text, QChar::isSurrogate(code) ? char32_t(0xfffd) : code);
    return true;
}

bool JsonPull::readNumber(std::uint64_t& number)
{
    if (peek() == 0) {
        fail(Problem::CutShort);
        return false;
    }
    ensure(24);
    std::uint64_t value = 0;
    std::size_t digits = 0;
    while (position < filled && window[position] >= '0' && window[position] <= '9') {
        const unsigned digit = unsigned(window[position] - '0');
        if (value > (UINT64_MAX - digit) / 10) {
            fail(Problem::Malformed);
            return false;
        }
        value = value * 10 + digit;
        ++position;
        ++digits;
    }
    if (digits == 0 || (position < filled && std::strchr(".eE-+", window[position]))) {
        fail(Problem::Malformed);
        return false;
    }
    number = value;
    return true;
}

// A number, true, false or null, which may go on past the window's end.
void JsonPull::skipWord()
{
    for (;;) {
        const char* start = window.data() + position;
        const char* end = window.data() + filled;
        const char* stop = std::find_if(start, end, [](char d) {
            return isSpace(d) || d == ',' || d == ']' || d == '}' || d == ':';
        });
        position += std::size_t(stop - start);
        if (stop != end || !ensure(1))
            return;
    }
}

// Strings, numbers and words are taken as they come; brackets only counted.
bool JsonPull::skipValue()
{
    std::size_t depth = 0;
    do {
        const char c = peek();
        if (c == 0) {
            fail(Problem::CutShort);
            return false;
        }
        if (c == '"') {
            if (!readString(scratch))
                return false;
        } else if (c == '[' || c == '{') {
            ++depth;
            ++position;
        } else if (c == ']' || c == '}') {
            if (depth == 0) {
                fail(Problem::Malformed);
                return false;
            }
            --depth;
            ++position;
        } else if (c == ',' || c == ':') {
            if (depth == 0) {
                fail(Problem::Malformed);
                return false;
            }
            ++position;
        } else {
            skipWord();
        }
    } while (depth > 0 && !failed());
    return !failed();
}
