#pragma once

#include "VideoFileWriter.h"
#include "core/AppSettings.h"

#include <QString>

namespace ravelcue::media::ffmpeg {

// The compressors a capture offers for AVI files, in list order: MJPEG first, then H.264 and
// MPEG-4 Visual (neither with B-frames, so every frame decodes in order), then the lossless FFV1
// and HuffYUV. Uncompressed BGR stands apart as index -1.
int captureCompressorCount();
QString captureCompressorName(int index);
VideoCodec captureCompressorCodec(int index); // -1 and unknown indices give RawBgr

// What a capture hands its writer beside the codec; zeros keep the writer's defaults.
struct EncoderOptions {
    int bitRate = 0; // bits a second
    int quality = 0;
    int keyFrameInterval = 0;
};

// The stored settings of the given compressor's codec; none for the lossless and raw ones.
EncoderOptions captureEncoderOptions(VideoCodec codec, const CodecSettings& settings);

// The WMV profiles: WMV2 in an ASF file at the bit rate named by the profile.
int captureProfileCount();
QString captureProfileName(int index);
int captureProfileBitRate(int index); // bits a second; index 0 for unknown indices

// Whether a capture file is a WMV (ASF) file by its extension.
bool isWmvFile(const QString& path);

} // namespace ravelcue::media::ffmpeg
