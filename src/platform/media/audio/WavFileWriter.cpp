#include "WavFileWriter.h"

#include <QtEndian>

namespace ravelcue::media {

namespace {

void put32(char* at, std::uint32_t value) {
    qToLittleEndian(value, at);
}

void put16(char* at, std::uint16_t value) {
    qToLittleEndian(value, at);
}

} // namespace

WavFileWriter::~WavFileWriter() {
    close();
}

QByteArray WavFileWriter::header(std::uint32_t dataBytes) {
    QByteArray bytes(kHeaderBytes, '\0');
    char* h = bytes.data();
    std::memcpy(h, "RIFF", 4);
    put32(h + 4, 36 + dataBytes);
    std::memcpy(h + 8, "WAVEfmt ", 8);
    put32(h + 16, 16); // size of the format chunk
    put16(h + 20, 1);  // PCM
    put16(h + 22, kChannels);
    put32(h + 24, kSampleRate);
    put32(h + 28, kSampleRate * kChannels * 2); // bytes a second
    put16(h + 32, kChannels * 2);               // bytes a frame
    put16(h + 34, 16);                          // bits a sample
    std::memcpy(h + 36, "data", 4);
    put32(h + 40, dataBytes);
    return bytes;
}

bool WavFileWriter::open(const QString& path, QString& reason) {
    close();
    file_.setFileName(path);
    dataBytes_ = 0;
    // Unbuffered: what append() returns from is in the system's hands, not ours.
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        reason = file_.errorString();
        return false;
    }
    if (file_.write(header(0)) != kHeaderBytes) {
        reason = file_.errorString();
        file_.close();
        return false;
    }
    return true;
}

bool WavFileWriter::append(const std::int16_t* samples, std::int64_t frames) {
    if (!file_.isOpen() || frames <= 0) {
        return file_.isOpen();
    }
    const qint64 bytes = frames * kChannels * 2;
    QByteArray little(bytes, Qt::Uninitialized);
    for (std::int64_t i = 0; i < frames * kChannels; ++i) {
        qToLittleEndian(samples[i], little.data() + i * 2);
    }
    const qint64 written = file_.write(little);
    if (written != bytes) {
        // Keep whole frames only, so the samples stay in step with their channels.
        file_.resize(kHeaderBytes + dataBytes_);
        file_.seek(kHeaderBytes + dataBytes_);
        updateHeader();
        return false;
    }
    dataBytes_ += bytes;
    return updateHeader();
}

bool WavFileWriter::updateHeader() {
    char sizes[4];
    const qint64 end = file_.pos();
    put32(sizes, static_cast<std::uint32_t>(36 + dataBytes_));
    bool ok = file_.seek(4) && file_.write(sizes, 4) == 4;
    put32(sizes, static_cast<std::uint32_t>(dataBytes_));
    ok = ok && file_.seek(40) && file_.write(sizes, 4) == 4;
    return file_.seek(end) && ok;
}

void WavFileWriter::close() {
    if (file_.isOpen()) {
        file_.close();
    }
}

} // namespace ravelcue::media
