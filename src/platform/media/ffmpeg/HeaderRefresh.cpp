#include "HeaderRefresh.h"

#include <cstring>
#include <optional>
#include <vector>

#include <QtEndian>

namespace ravelcue::media::ffmpeg {

namespace {

std::uint32_t le32(const QByteArray& bytes, qint64 at) {
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

std::uint64_t le64(const QByteArray& bytes, qint64 at) {
    return qFromLittleEndian<quint64>(bytes.constData() + at);
}

bool tagAt(const QByteArray& bytes, qint64 at, const char* tag) {
    return at + 4 <= bytes.size() && std::memcmp(bytes.constData() + at, tag, 4) == 0;
}

// Writes the fields in place, then goes back to the end of the file, which flushes them.
class FieldWriter {
public:
    FieldWriter(AVIOContext& file, std::int64_t end)
        : file_(file)
        , end_(end) {}

    void put32(std::int64_t at, std::uint64_t value) {
        if (avio_seek(&file_, at, SEEK_SET) >= 0) {
            avio_wl32(&file_, static_cast<unsigned>(value));
        }
    }
    void put64(std::int64_t at, std::uint64_t value) {
        if (avio_seek(&file_, at, SEEK_SET) >= 0) {
            avio_wl64(&file_, value);
        }
    }
    int done() {
        const std::int64_t back = avio_seek(&file_, end_, SEEK_SET);
        if (back < 0) {
            return static_cast<int>(back);
        }
        return file_.error;
    }

private:
    AVIOContext& file_;
    std::int64_t end_;
};

// AVI: the RIFF and movi sizes, and the frame counts of the main header (avih), the video
// stream's header (strh) and the OpenDML header (dmlh). Without an index a reader walks the
// movi list, which these sizes bound; the counts give the length.
class AviHeaderRefresh final : public HeaderRefresh {
public:
    static std::unique_ptr<HeaderRefresh> find(const QByteArray& header) {
        if (!tagAt(header, 0, "RIFF") || !tagAt(header, 8, "AVI ")) {
            return nullptr;
        }
        auto refresh = std::make_unique<AviHeaderRefresh>();
        if (!refresh->walk(header, 12, header.size()) || refresh->moviSizeAt_ < 0 ||
            refresh->frameCountsAt_.empty()) {
            return nullptr;
        }
        return refresh;
    }

    int refresh(AVIOContext& file, const WrittenSoFar& written) override {
        // Above 1 GiB the muxer closes this RIFF itself, with its index, and goes on in an
        // OpenDML extension; the sizes here are then its own.
        if (written.fileBytes > kLargestRiff) {
            return 0;
        }
        // A frame the camera lost is an empty chunk in the movi list, so the stream holds a
        // chunk for every frame time up to the last one.
        const std::int64_t frames =
            written.packets > 1 ? std::max(written.packets, written.lastDts + 1) : written.packets;
        FieldWriter fields(file, written.fileBytes);
        fields.put32(moviSizeAt_, written.fileBytes - (moviSizeAt_ + 4));
        fields.put32(4, written.fileBytes - 8);
        for (const qint64 at : frameCountsAt_) {
            fields.put32(at, frames);
        }
        return fields.done();
    }

private:
    static constexpr std::int64_t kLargestRiff = 1024LL * 1024 * 1024;

    // Finds the fields among the chunks in [from, to); false on a chunk that runs out.
    bool walk(const QByteArray& bytes, qint64 from, qint64 to) {
        for (qint64 at = from; at + 8 <= to && moviSizeAt_ < 0;) {
            const std::uint32_t size = le32(bytes, at + 4);
            if (tagAt(bytes, at, "LIST") && tagAt(bytes, at + 8, "movi")) {
                moviSizeAt_ = at + 4;
                return true;
            }
            if (at + 8 + qint64(size) > to) {
                return false;
            }
            if (tagAt(bytes, at, "LIST")) {
                if (!walk(bytes, at + 12, at + 8 + size)) {
                    return false;
                }
            } else if (tagAt(bytes, at, "avih") && size >= 20) {
                frameCountsAt_.push_back(at + 8 + 16);
            } else if (tagAt(bytes, at, "strh") && size >= 36 && tagAt(bytes, at + 8, "vids") &&
                       !videoStreamSeen_) {
                videoStreamSeen_ = true;
                frameCountsAt_.push_back(at + 8 + 32);
            } else if (tagAt(bytes, at, "dmlh") && size >= 4) {
                frameCountsAt_.push_back(at + 8);
            }
            at += 8 + size + (size & 1);
        }
        return true;
    }

    qint64 moviSizeAt_ = -1;
    std::vector<qint64> frameCountsAt_;
    bool videoStreamSeen_ = false;
};

// ASF: the file properties (file size, packet count, play and send durations) and the data
// object's size and packet count. A reader trusts them, as the file does not say it is a
// broadcast.
class AsfHeaderRefresh final : public HeaderRefresh {
public:
    static std::unique_ptr<HeaderRefresh> find(const QByteArray& header) {
        static const QByteArray headerObject = guid("3026b2758e66cf11a6d900aa0062ce6c");
        static const QByteArray fileProperties = guid("a1dcab8c47a9cf118ee400c00c205365");
        static const QByteArray dataObject = guid("3626b2758e66cf11a6d900aa0062ce6c");
        constexpr qint64 kHeaderObjectBytes = 30;
        if (header.size() < kHeaderObjectBytes || !header.startsWith(headerObject)) {
            return nullptr;
        }
        const auto headerBytes = static_cast<qint64>(le64(header, 16));
        auto refresh = std::make_unique<AsfHeaderRefresh>();
        for (qint64 at = kHeaderObjectBytes; at + 24 <= headerBytes && at + 24 <= header.size();) {
            const auto size = static_cast<qint64>(le64(header, at + 16));
            if (size < 24) {
                return nullptr;
            }
            if (header.mid(at, 16) == fileProperties && at + 104 <= header.size()) {
                refresh->properties_ = at;
                refresh->prerollMs_ = le64(header, at + 80);
                refresh->packetBytes_ = le32(header, at + 92);
            }
            at += size;
        }
        if (refresh->properties_ < 0 || refresh->packetBytes_ == 0 ||
            header.mid(headerBytes, 16) != dataObject) {
            return nullptr;
        }
        refresh->data_ = headerBytes;
        return refresh;
    }

    int refresh(AVIOContext& file, const WrittenSoFar& written) override {
        constexpr std::int64_t kDataObjectBytes = 50;
        constexpr std::uint64_t k100nsPerMs = 10'000;
        const std::int64_t packets =
            std::max<std::int64_t>(0, written.fileBytes - data_ - kDataObjectBytes) / packetBytes_;
        const std::int64_t dataBytes = kDataObjectBytes + packets * packetBytes_;
        FieldWriter fields(file, written.fileBytes);
        fields.put64(data_ + 16, dataBytes);
        fields.put64(data_ + 40, packets);
        fields.put64(properties_ + 40, data_ + dataBytes);
        fields.put64(properties_ + 56, packets);
        fields.put64(properties_ + 64, written.endTime100ns + prerollMs_ * k100nsPerMs);
        fields.put64(properties_ + 72, written.endTime100ns);
        return fields.done();
    }

private:
    static QByteArray guid(const char* hex) { return QByteArray::fromHex(hex); }

    qint64 properties_ = -1;
    qint64 data_ = -1;
    std::uint64_t prerollMs_ = 0;
    std::int64_t packetBytes_ = 0;
};

} // namespace

std::unique_ptr<HeaderRefresh> HeaderRefresh::forHeader(const char* formatName,
                                                        const QByteArray& header) {
    if (std::strcmp(formatName, "avi") == 0) {
        return AviHeaderRefresh::find(header);
    }
    if (std::strcmp(formatName, "asf") == 0) {
        return AsfHeaderRefresh::find(header);
    }
    return nullptr;
}

} // namespace ravelcue::media::ffmpeg
