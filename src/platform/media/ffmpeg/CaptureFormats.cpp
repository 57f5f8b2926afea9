#include "CaptureFormats.h"

#include <array>

namespace ravelcue::media::ffmpeg {

namespace {

struct Compressor {
    const char* name;
    VideoCodec codec;
};

constexpr std::array kCompressors{
    Compressor{"MJPEG", VideoCodec::Mjpeg},
    Compressor{"H.264", VideoCodec::H264},
    Compressor{"MPEG-4 Visual", VideoCodec::Mpeg4},
    Compressor{"FFV1 (lossless)", VideoCodec::Ffv1},
    Compressor{"HuffYUV (lossless)", VideoCodec::Huffyuv},
};

struct Profile {
    const char* name;
    int bitRate;
};

// The first is the one a capture falls back on when no profile was chosen.
constexpr std::array kProfiles{
    Profile{"Video for broadband NTSC (1500 Kbps total)", 1'500'000},
    Profile{"Video for broadband NTSC (768 Kbps total)", 768'000},
    Profile{"Video for dial-up and slow links (256 Kbps total)", 256'000},
    Profile{"Video for LAN and fast broadband (3000 Kbps total)", 3'000'000},
    Profile{"High quality video for local playback (6000 Kbps total)", 6'000'000},
};

} // namespace

int captureCompressorCount() {
    return static_cast<int>(kCompressors.size());
}

QString captureCompressorName(int index) {
    if (index < 0 || index >= captureCompressorCount()) {
        return {};
    }
    return QString::fromLatin1(kCompressors[size_t(index)].name);
}

VideoCodec captureCompressorCodec(int index) {
    if (index < 0 || index >= captureCompressorCount()) {
        return VideoCodec::RawBgr;
    }
    return kCompressors[size_t(index)].codec;
}

EncoderOptions captureEncoderOptions(VideoCodec codec, const CodecSettings& settings) {
    constexpr int kBitsPerKbit = 1000;
    switch (codec) {
    case VideoCodec::Mjpeg:
        return {0, settings.MjpegQuality, 0};
    case VideoCodec::H264:
        return {settings.H264BitRate * kBitsPerKbit, 0, settings.H264KeyFrameInterval};
    case VideoCodec::Mpeg4:
        return {settings.Mpeg4BitRate * kBitsPerKbit, 0, settings.Mpeg4KeyFrameInterval};
    default:
        return {};
    }
}

int captureProfileCount() {
    return static_cast<int>(kProfiles.size());
}

QString captureProfileName(int index) {
    if (index < 0 || index >= captureProfileCount()) {
        return {};
    }
    return QString::fromLatin1(kProfiles[size_t(index)].name);
}

int captureProfileBitRate(int index) {
    if (index < 0 || index >= captureProfileCount()) {
        index = 0;
    }
    return kProfiles[size_t(index)].bitRate;
}

bool isWmvFile(const QString& path) {
    return path.endsWith(QLatin1String(".wmv"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1String(".asf"), Qt::CaseInsensitive);
}

} // namespace ravelcue::media::ffmpeg
