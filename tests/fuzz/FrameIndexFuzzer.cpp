// The frame index of a video from the packets a damaged or hostile file may hold: stamps
// anywhere in 64 bits, missing or out of order, any durations, time base and frame rate.
#include "FuzzInput.h"
#include "platform/media/ffmpeg/FrameIndex.h"

#include <fuzzer/FuzzedDataProvider.h>

extern "C" {
#include <libavutil/avutil.h>
}

using ravelcue::fuzz::check;
using ravelcue::media::ffmpeg::FrameIndex;

namespace {

// Stamps as files hold them: mostly near each other, sometimes missing or at the ends of
// the range.
std::int64_t consumeStamp(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 7)) {
    case 0:
        return AV_NOPTS_VALUE;
    case 1:
        return input.ConsumeIntegral<std::int64_t>();
    default:
        return input.ConsumeIntegralInRange<std::int64_t>(-1000, 100000);
    }
}

AVRational consumeRational(FuzzedDataProvider& input) {
    return {input.ConsumeIntegral<int>(), input.ConsumeIntegral<int>()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const AVRational timeBase = consumeRational(input);
    const AVRational frameRate = consumeRational(input);
    const int outputDelay =
        input.ConsumeBool() ? input.ConsumeIntegralInRange(-2, 16) : input.ConsumeIntegral<int>();
    std::vector<FrameIndex::Packet> packets(input.ConsumeIntegralInRange<std::size_t>(1, 64));
    for (FrameIndex::Packet& packet : packets) {
        packet.pts = consumeStamp(input);
        packet.dts = consumeStamp(input);
        packet.duration = input.ConsumeBool() ? 0 : consumeStamp(input);
        packet.keyframe = input.ConsumeBool();
        packet.discard = input.ConsumeIntegralInRange(0, 7) == 0;
    }
    if (timeBase.num <= 0 || timeBase.den <= 0) {
        return 0; // FFmpeg gives every stream a time base above zero
    }

    const FrameIndex index(packets, timeBase, frameRate, outputDelay);
    check(index.count() <= static_cast<std::int64_t>(packets.size()),
          "no more frames than packets");
    if (index.empty()) {
        return 0;
    }
    const std::int64_t last = index.count() - 1;
    for (const std::int64_t frame : {std::int64_t{0}, last / 2, last}) {
        const std::int64_t keyframe = index.keyframeAtOrBefore(frame);
        check(keyframe >= 0 && keyframe <= frame, "a frame's keyframe comes before it");
        check(index.keyframeBefore(keyframe) < keyframe, "an earlier keyframe is earlier");
        const std::int64_t shown = index.frameAt(index.timeMs(frame));
        check(shown >= 0 && shown <= last, "a time shows a frame of the file");
        check(index.frameOfStamp(index.stamp(frame)) >= 0, "a frame's stamp finds a frame");
        index.decodePosition(index.stamp(frame));
    }
    check(index.clampFrame(-1) == 0 && index.clampFrame(last + 1) == last,
          "frames outside the file clamp to its ends");
    index.frameAt(index.durationMs());
    index.frameAt(-1.0);
    return 0;
}
