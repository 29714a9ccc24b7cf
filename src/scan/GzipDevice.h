#pragma once

#include <QIODevice>

#include <memory>

struct z_stream_s;

// A gzip stream over another device, sequential: opened for reading it gives
// the data of a gzip file, or of a plain one as it is (told by its first two
// bytes), members one after the other; opened for writing it compresses into
// the device. What the device holds is the caller's to open and close.
class GzipDevice : public QIODevice {
public:
    explicit GzipDevice(QIODevice& device);
    ~GzipDevice() override;
    Q_DISABLE_COPY_MOVE(GzipDevice)

    bool open(OpenMode mode) override;
    // Writing: ends the gzip member; false when the device took not all of it.
    bool finish();
    void close() override;
    [[nodiscard]] bool isSequential() const override { return true; }
    // Reading: the data ended inside a gzip member rather than at its end.
    [[nodiscard]] bool isCutShort() const { return cutShort; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool fillInput();
    qint64 inflateInto(char* data, qint64 maxSize);
    bool deflateOut(int flush);

    QIODevice& device;
    std::unique_ptr<z_stream_s> stream;
    QByteArray buffer; // compressed bytes, read ahead or waiting to go out
    bool compressed = false;
    bool inMember = false;
    bool cutShort = false;
    bool finished = false;
};
