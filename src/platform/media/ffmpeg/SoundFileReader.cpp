#include "SoundFileReader.h"

#include "FfmpegPtr.h"

#include <algorithm>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

namespace ravelcue::media::ffmpeg {

namespace {

constexpr int kRate = 44100;
// The highest rate recorders offer (DXD at 16 times 48 kHz).
constexpr int kHighestRate = 768000;

std::string failure(const std::string& what, int code) {
    return what + ": " + errorText(code).toStdString();
}

} // namespace

SoundReading readSound(const std::string& path, double maxSeconds) {
    SoundReading reading;
    AVFormatContext* rawFormat = nullptr;
    int code = avformat_open_input(&rawFormat, path.c_str(), nullptr, nullptr);
    if (code < 0) {
        reading.error = failure("not a sound file FFmpeg can read", code);
        return reading;
    }
    InputContextPtr format(rawFormat);
    code = avformat_find_stream_info(format.get(), nullptr);
    if (code < 0) {
        reading.error = failure("its streams can't be read", code);
        return reading;
    }
    const AVCodec* decoder = nullptr;
    const int streamIndex =
        av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &decoder, 0);
    if (streamIndex < 0 || decoder == nullptr) {
        reading.error = streamIndex == AVERROR_DECODER_NOT_FOUND ? "no decoder for its sound"
                                                                 : "it holds no sound";
        return reading;
    }
    const AVCodecParameters& parameters = *format->streams[streamIndex]->codecpar;
    if (std::string(format->iformat->name) == "wav" &&
        parameters.codec_id == AV_CODEC_ID_PCM_S16LE && parameters.sample_rate == kRate &&
        parameters.ch_layout.nb_channels == 2) {
        reading.plainWav = true;
        return reading;
    }

    CodecContextPtr codec(avcodec_alloc_context3(decoder));
    if (!codec || avcodec_parameters_to_context(codec.get(), &parameters) < 0) {
        reading.error = "out of memory";
        return reading;
    }
    code = avcodec_open2(codec.get(), decoder, nullptr);
    if (code < 0) {
        reading.error = failure("its sound can't be decoded", code);
        return reading;
    }
    // The resampler's filters grow with the ratio of the rates: a header claiming a gigahertz
    // would take gigabytes before a sample is read.
    if (codec->sample_rate <= 0 || codec->sample_rate > kHighestRate) {
        reading.error =
            "its sample rate of " + std::to_string(codec->sample_rate) + " Hz is not one of sound";
        return reading;
    }
    if (codec->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(&codec->ch_layout, codec->ch_layout.nb_channels);
    }
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext* rawResampler = nullptr;
    code = swr_alloc_set_opts2(&rawResampler, &stereo, AV_SAMPLE_FMT_S16, kRate, &codec->ch_layout,
                               codec->sample_fmt, codec->sample_rate, 0, nullptr);
    SwrPtr resampler(rawResampler);
    if (code < 0 || swr_init(resampler.get()) < 0) {
        reading.error = "its sound can't be converted to 44,100 Hz 16-bit stereo";
        return reading;
    }

    const auto maxFrames = static_cast<std::size_t>(maxSeconds * kRate);
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    // At most a second is put out at a time, and no more than the frames still wanted: a file
    // that claims a rate of a few hertz would otherwise turn one packet into gigabytes. What the
    // resampler can't put out yet it keeps, and gives on the next call.
    auto convert = [&](const AVFrame* input) {
        const std::uint8_t* const* in =
            input != nullptr ? const_cast<const std::uint8_t**>(input->extended_data) : nullptr;
        int inputFrames = input != nullptr ? input->nb_samples : 0;
        const std::uint8_t* noInput = nullptr;
        for (;;) {
            const std::size_t have = reading.words.size() / 2;
            if (have >= maxFrames) {
                return;
            }
            const int room = static_cast<int>(std::min<std::size_t>(kRate, maxFrames - have));
            const std::size_t start = reading.words.size();
            reading.words.resize(start + static_cast<std::size_t>(room) * 2);
            auto* out = reinterpret_cast<std::uint8_t*>(reading.words.data() + start);
            const int made = swr_convert(resampler.get(), &out, room,
                                         const_cast<const std::uint8_t**>(in), inputFrames);
            reading.words.resize(start + static_cast<std::size_t>(std::max(made, 0)) * 2);
            if (made < room || input == nullptr) {
                return;
            }
            in = &noInput; // the rest of what was given, without flushing
            inputFrames = 0;
        }
    };
    auto drain = [&] {
        while (avcodec_receive_frame(codec.get(), frame.get()) >= 0) {
            convert(frame.get());
            av_frame_unref(frame.get());
        }
    };
    while (reading.words.size() / 2 < maxFrames && av_read_frame(format.get(), packet.get()) >= 0) {
        if (packet->stream_index == streamIndex) {
            avcodec_send_packet(codec.get(), packet.get());
            drain();
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(codec.get(), nullptr);
    drain();
    convert(nullptr); // what the resampler still holds
    if (reading.words.size() / 2 > maxFrames) {
        reading.words.resize(maxFrames * 2);
    }
    if (reading.words.empty()) {
        reading.error = "its sound holds no samples";
    }
    return reading;
}

} // namespace ravelcue::media::ffmpeg
