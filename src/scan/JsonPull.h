#pragma once

#include <QIODevice>
#include <QString>

#include <cstdint>
#include <string>
#include <vector>

// Reads JSON from a device a token at a time, holding only a window of it,
// so that a file far larger than memory can be taken apart as it streams by.
// The caller asks for what it expects next; the first thing that is not so
// stops the reader, which then tells what went wrong and where.
class JsonPull {
public:
    enum class Problem { None, CutShort, Malformed, Unreadable };

    explicit JsonPull(QIODevice& source);

    // The next character that is not white space, not taken; 0 at the end.
    [[nodiscard]] char peek();
    // Takes the next character when it is `expected`.
    bool take(char expected);
    // Takes the next character, which must be `expected`.
    bool expect(char expected);
    // A string, unescaped, as UTF-8.
    bool readString(std::string& text);
    bool readNumber(std::uint64_t& number);
    // Any one value, nested as deep as it may be.
    bool skipValue();
    // Takes "," or the closing bracket of a list or object: false when it is the
    // closing one (or nothing fits, which stops the reader).
    bool nextItem(char closing);

    [[nodiscard]] bool failed() const { return problem != Problem::None; }
    [[nodiscard]] Problem failure() const { return problem; }
    // Where the reader stopped: the count of bytes taken before it.
    [[nodiscard]] qint64 offset() const { return consumed + qint64(position); }
    // Stops the reader as the caller found it: with a problem of its own.
    void fail(Problem what);

private:
    // At least `count` bytes ahead, or as many as are left; false when none are.
    bool ensure(std::size_t count);
    void skipWord();
    bool readEscape(std::string& text);
    [[nodiscard]] std::size_t available() const { return filled - position; }

    QIODevice& source;
    std::vector<char> window;
    std::size_t position = 0;
    std::size_t filled = 0;
    qint64 consumed = 0; // bytes dropped from the window's front
    bool ended = false;
    std::string scratch; // what a value passed over held
    Problem problem = Problem::None;
};
