#include "GzipDevice.h"

#include <zlib.h>

namespace {

constexpr qsizetype chunk = 1 << 18;
// Gzip's header and trailer around deflate's data, for zlib's *Init2.
constexpr int gzipWindow = 15 + 16;

} // namespace

GzipDevice::GzipDevice(QIODevice& source)
    : device(source)
{}

GzipDevice::~GzipDevice()
{
    close();
}

bool GzipDevice::open(OpenMode mode)
{
    if (isOpen() || (mode & ReadWrite) == ReadWrite || (mode & Append))
        return false;
    stream = std::make_unique<z_stream_s>();
    buffer.clear();
    cutShort = false;
    inMember = false;
    finished = false;
    if (mode & WriteOnly) {
        // Fast rather than small: a scan's JSON shrinks by nearly as much.
        compressed =
            deflateInit2(stream.get(), 3, Z_DEFLATED, gzipWindow, 8, Z_DEFAULT_STRATEGY) == Z_OK;
        buffer.resize(chunk);
    } else {
        const QByteArray magic = device.peek(2);
        compressed = magic.size() == 2 && quint8(magic[0]) == 0x1f && quint8(magic[1]) == 0x8b;
        if (compressed)
            compressed = inflateInit2(stream.get(), gzipWindow) == Z_OK;
    }
    if (!compressed && (mode & WriteOnly)) {
        stream.reset();
        return false;
    }
    return QIODevice::open(mode | Unbuffered);
}

bool GzipDevice::finish()
{
    if (!isWritable() || finished)
        return false;
    finished = true;
    stream->avail_in = 0;
    return deflateOut(Z_FINISH);
}

void GzipDevice::close()
{
    if (!isOpen())
        return;
    if (compressed) {
        if (openMode() & WriteOnly) {
            finish();
            deflateEnd(stream.get());
        } else {
            inflateEnd(stream.get());
        }
    }
    stream.reset();
    QIODevice::close();
}

qint64 GzipDevice::readData(char* data, qint64 maxSize)
{
    if (!compressed)
        return device.read(data, maxSize);
    qint64 total = 0;
    while (total < maxSize) {
        const qint64 got = inflateInto(data + total, maxSize - total);
        if (got < 0)
            return total > 0 ? total : -1;
        if (got == 0)
            break;
        total += got;
    }
    return total;
}

// What inflates from the input at hand, refilled when it runs dry; 0 at the
// end of the data, -1 when it is not gzip after all.
qint64 GzipDevice::inflateInto(char* data, qint64 maxSize)
{
    if (stream->avail_in == 0 && !fillInput()) {
        cutShort = inMember;
        return 0;
    }
    stream->next_out = reinterpret_cast<Bytef*>(data);
    stream->avail_out = uInt(std::min<qint64>(maxSize, chunk));
    const uInt before = stream->avail_out;
    inMember = true;
    const int status = inflate(stream.get(), Z_NO_FLUSH);
    const qint64 produced = qint64(before - stream->avail_out);
    if (status == Z_STREAM_END) {
        // Another member may follow, as `cat a.gz b.gz` makes.
        inMember = false;
        inflateReset(stream.get());
    } else if (status != Z_OK && status != Z_BUF_ERROR) {
        setErrorString(QString::fromLatin1(stream->msg ? stream->msg : "damaged data"));
        return produced > 0 ? produced : -1;
    }
    if (produced == 0 && status == Z_BUF_ERROR && stream->avail_in == 0)
        return inflateInto(data, maxSize);
    return produced;
}

bool GzipDevice::fillInput()
{
    buffer.resize(chunk);
    const qint64 got = device.read(buffer.data(), chunk);
    if (got <= 0)
        return false;
    stream->next_in = reinterpret_cast<Bytef*>(buffer.data());
    stream->avail_in = uInt(got);
    return true;
}

qint64 GzipDevice::writeData(const char* data, qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        const qint64 part = std::min<qint64>(size - done, chunk);
        stream->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data + done));
        stream->avail_in = uInt(part);
        if (!deflateOut(Z_NO_FLUSH))
            return done > 0 ? done : -1;
        done += part;
    }
    return done;
}

// Deflates what waits in the stream's input and writes what comes out.
bool GzipDevice::deflateOut(int flush)
{
    int status = Z_OK;
    do {
        stream->next_out = reinterpret_cast<Bytef*>(buffer.data());
        stream->avail_out = uInt(buffer.size());
        status = deflate(stream.get(), flush);
        const qint64 produced = buffer.size() - qint64(stream->avail_out);
        if (status == Z_STREAM_ERROR || device.write(buffer.constData(), produced) != produced)
            return false;
    } while (stream->avail_out == 0 || (flush == Z_FINISH && status != Z_STREAM_END));
    return true;
}
