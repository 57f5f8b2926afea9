#pragma once

#include <cstdint>

#include <QFile>
#include <QString>

namespace ravelcue::media {

// Writes 16-bit stereo PCM at 44,100 frames a second into a WAV file with the plain 44-byte
// header, the samples straight after it. The header's sizes are brought up to date after every
// append, so a recording cut off by a crash still reads as a whole file. One thread at a time.
class WavFileWriter {
public:
    static constexpr int kSampleRate = 44100;
    static constexpr int kChannels = 2;
    static constexpr int kHeaderBytes = 44;

    ~WavFileWriter();

    // Creates (or empties) the file and writes the header. False with a reason on failure.
    bool open(const QString& path, QString& reason);
    // Interleaved left, right words. False when the write failed; the file then keeps the whole
    // frames written before, with a header that says so.
    bool append(const std::int16_t* samples, std::int64_t frames);
    void close();
    bool isOpen() const { return file_.isOpen(); }
    std::int64_t framesWritten() const { return dataBytes_ / (kChannels * 2); }

    // The 44-byte header for a data part of that many bytes.
    static QByteArray header(std::uint32_t dataBytes);

private:
    bool updateHeader();

    QFile file_;
    std::int64_t dataBytes_ = 0;
};

} // namespace ravelcue::media
