#include "FrameIndex.h"

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/mathematics.h>
}

#include <algorithm>

namespace ravelcue::media::ffmpeg {

namespace {

// A damaged file may stamp a packet anywhere in 64 bits. Stamps beyond this many ticks (centuries
// at 90 kHz) are taken as missing and longer durations as unknown, so that no sum or difference
// of stamps can overflow.
constexpr std::int64_t kLargestStamp = std::int64_t{1} << 53;
constexpr std::int64_t kLongestFrame = std::int64_t{1} << 32;
// Decoders hold back a few pictures at most; a file claiming more is not believed.
constexpr int kLongestOutputDelay = 64;

bool usableStamp(std::int64_t stamp) {
    return stamp != AV_NOPTS_VALUE && stamp >= -kLargestStamp && stamp <= kLargestStamp;
}

std::vector<FrameIndex::Packet> usablePackets(const std::vector<FrameIndex::Packet>& packets) {
    std::vector<FrameIndex::Packet> usable = packets;
    for (FrameIndex::Packet& packet : usable) {
        packet.pts = usableStamp(packet.pts) ? packet.pts : AV_NOPTS_VALUE;
        packet.dts = usableStamp(packet.dts) ? packet.dts : AV_NOPTS_VALUE;
        if (packet.duration < 0 || packet.duration > kLongestFrame) {
            packet.duration = 0;
        }
    }
    return usable;
}

std::int64_t typicalDuration(const std::vector<std::int64_t>& sortedStamps, AVRational timeBase,
                             AVRational frameRate) {
    if (frameRate.num > 0 && frameRate.den > 0) {
        const std::int64_t fromRate = av_rescale_q(1, av_inv_q(frameRate), timeBase);
        if (fromRate > 0) {
            return fromRate;
        }
    }
    if (sortedStamps.size() >= 2) {
        std::vector<std::int64_t> gaps;
        gaps.reserve(sortedStamps.size() - 1);
        for (size_t i = 1; i < sortedStamps.size(); ++i) {
            gaps.push_back(sortedStamps[i] - sortedStamps[i - 1]);
        }
        std::nth_element(gaps.begin(), gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() / 2),
                         gaps.end());
        return std::max<std::int64_t>(1, gaps[gaps.size() / 2]);
    }
    return 1;
}

} // namespace

FrameIndex::FrameIndex(const std::vector<Packet>& filePackets, AVRational timeBase,
                       AVRational fallbackFrameRate, int outputDelay)
    : timeBase_(timeBase) {
    const std::vector<Packet> packets = usablePackets(filePackets);
    // A decoder drops what comes before the first keyframe, so those packets are no frames.
    auto start =
        std::find_if(packets.begin(), packets.end(), [](const Packet& p) { return p.keyframe; });
    marksKeyframes_ = start != packets.end();
    if (!marksKeyframes_) {
        start = packets.begin(); // no keyframe flags at all: decode from the start
    }
    std::vector<std::int64_t> known;
    for (auto it = start; it != packets.end(); ++it) {
        if (it->pts != AV_NOPTS_VALUE || it->dts != AV_NOPTS_VALUE) {
            known.push_back(it->pts != AV_NOPTS_VALUE ? it->pts : it->dts);
        }
    }
    std::sort(known.begin(), known.end());
    frameDuration_ = std::clamp<std::int64_t>(typicalDuration(known, timeBase, fallbackFrameRate),
                                              1, kLongestFrame);

    framesCarryStamps_ = indexByStamps(start, packets.end());
    if (!framesCarryStamps_) {
        outputDelay_ = std::clamp(outputDelay, 0, kLongestOutputDelay);
        indexByCounting(start, packets.end());
    }
    finishKeyframes();
}

FrameIndex FrameIndex::estimate(std::int64_t frames, AVRational timeBase, std::int64_t firstStamp,
                                AVRational frameRate) {
    FrameIndex index;
    index.timeBase_ = timeBase;
    index.exact_ = false;
    index.framesCarryStamps_ = false;
    index.frameDuration_ = typicalDuration({}, timeBase, frameRate);
    const std::int64_t count = std::max<std::int64_t>(1, frames);
    index.stamps_.reserve(static_cast<size_t>(count));
    for (std::int64_t frame = 0; frame < count; ++frame) {
        index.stamps_.push_back(firstStamp + frame * index.frameDuration_);
    }
    index.endStamp_ = index.stamps_.back() + index.frameDuration_;
    index.keyframes_.push_back(0);
    index.seekStamps_.push_back(firstStamp);
    return index;
}

bool FrameIndex::indexByStamps(Iterator start, Iterator end) {
    if (std::any_of(start, end, [](const Packet& p) { return p.pts == AV_NOPTS_VALUE; })) {
        return false;
    }
    std::vector<std::int64_t> stamps;
    endStamp_ = 0;
    for (auto it = start; it != end; ++it) {
        if (!it->discard) {
            stamps.push_back(it->pts);
            endStamp_ =
                std::max(endStamp_, it->pts + (it->duration > 0 ? it->duration : frameDuration_));
        }
    }
    std::sort(stamps.begin(), stamps.end());
    if (stamps.empty()) {
        return false;
    }
    endStamp_ = std::max(endStamp_, stamps.back() + frameDuration_);
    stamps_ = std::move(stamps);
    for (auto it = start; it != end; ++it) {
        if (it->keyframe || it == start) {
            // A keyframe an edit list leaves out still starts the decoding of the frames after it.
            const auto frame = std::lower_bound(stamps_.begin(), stamps_.end(), it->pts);
            if (frame != stamps_.end()) {
                addKeyframe(frame - stamps_.begin(), *it);
            }
        }
    }
    return true;
}

void FrameIndex::indexByCounting(Iterator start, Iterator end) {
    // Decoders that hold pictures back stamp each with the packet that pushed it out, so the
    // picture n decode places later carries the time of picture n.
    std::int64_t previous = AV_NOPTS_VALUE;
    for (auto it = start; it != end; ++it) {
        std::int64_t dts = it->dts;
        if (dts == AV_NOPTS_VALUE || (previous != AV_NOPTS_VALUE && dts <= previous)) {
            dts = previous == AV_NOPTS_VALUE ? 0 : previous + frameDuration_;
        }
        const std::int64_t position = static_cast<std::int64_t>(decodeStamps_.size());
        decodeStamps_.push_back(dts);
        if (it->keyframe || it == start) {
            addKeyframe(position, {.pts = dts, .dts = dts});
            if (it->pts != AV_NOPTS_VALUE) {
                keyframePts_.emplace_back(it->pts, position);
            }
        }
        previous = dts;
    }
    const auto frames = static_cast<std::int64_t>(decodeStamps_.size());
    for (std::int64_t frame = 0; frame < frames; ++frame) {
        const std::int64_t source = frame + outputDelay_;
        stamps_.push_back(source < frames
                              ? decodeStamps_[static_cast<size_t>(source)]
                              : decodeStamps_.back() + (source - frames + 1) * frameDuration_);
    }
    endStamp_ = stamps_.empty() ? 0 : stamps_.back() + frameDuration_;
    std::sort(keyframePts_.begin(), keyframePts_.end());
}

void FrameIndex::addKeyframe(std::int64_t frame, const Packet& packet) {
    keyframes_.push_back(frame);
    seekStamps_.push_back(packet.dts != AV_NOPTS_VALUE ? std::min(packet.dts, packet.pts)
                                                       : packet.pts);
}

void FrameIndex::finishKeyframes() {
    std::vector<std::pair<std::int64_t, std::int64_t>> entries;
    for (size_t i = 0; i < keyframes_.size(); ++i) {
        entries.emplace_back(keyframes_[i], seekStamps_[i]);
    }
    if (!stamps_.empty()) {
        entries.emplace_back(0, stamps_.front());
    }
    // Sorted by frame, the first entry of a frame holding the earliest stamp.
    std::sort(entries.begin(), entries.end());
    entries.erase(std::unique(entries.begin(), entries.end(),
                              [](const auto& a, const auto& b) { return a.first == b.first; }),
                  entries.end());
    keyframes_.clear();
    seekStamps_.clear();
    for (const auto& [frame, seekStampValue] : entries) {
        keyframes_.push_back(frame);
        seekStamps_.push_back(seekStampValue);
    }
}

std::int64_t FrameIndex::clampFrame(std::int64_t frame) const {
    return std::clamp<std::int64_t>(frame, 0, std::max<std::int64_t>(0, count() - 1));
}

double FrameIndex::timeMs(std::int64_t frame) const {
    if (stamps_.empty()) {
        return 0.0;
    }
    const std::int64_t delta = stamps_[static_cast<size_t>(clampFrame(frame))] - stamps_.front();
    return static_cast<double>(delta) * timeBase_.num * 1000.0 / timeBase_.den;
}

std::int64_t FrameIndex::frameAt(double ms) const {
    std::int64_t low = 0;
    std::int64_t high = count(); // first frame that starts after ms
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (timeMs(middle) <= ms) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return std::max<std::int64_t>(0, low - 1);
}

std::int64_t FrameIndex::frameOfStamp(std::int64_t stampValue) const {
    const auto it = std::lower_bound(stamps_.begin(), stamps_.end(), stampValue);
    return it != stamps_.end() && *it == stampValue ? it - stamps_.begin() : -1;
}

std::int64_t FrameIndex::decodePosition(std::int64_t dts) const {
    const auto it = std::lower_bound(decodeStamps_.begin(), decodeStamps_.end(), dts);
    return it != decodeStamps_.end() && *it == dts ? it - decodeStamps_.begin() : -1;
}

std::int64_t FrameIndex::keyframeOfPacket(std::int64_t pts, std::int64_t dts) const {
    const std::int64_t byDts = decodePosition(dts);
    if (byDts >= 0 && std::binary_search(keyframes_.begin(), keyframes_.end(), byDts)) {
        return byDts;
    }
    for (const std::int64_t stampValue : {pts, dts}) {
        const auto it = std::lower_bound(keyframePts_.begin(), keyframePts_.end(),
                                         std::pair<std::int64_t, std::int64_t>{stampValue, -1});
        if (stampValue != AV_NOPTS_VALUE && it != keyframePts_.end() && it->first == stampValue) {
            return it->second;
        }
    }
    return -1;
}

double FrameIndex::durationMs() const {
    if (stamps_.empty()) {
        return 0.0;
    }
    return static_cast<double>(endStamp_ - stamps_.front()) * timeBase_.num * 1000.0 /
           timeBase_.den;
}

std::int64_t FrameIndex::keyframeAtOrBefore(std::int64_t frame) const {
    const auto it = std::upper_bound(keyframes_.begin(), keyframes_.end(), frame);
    return it == keyframes_.begin() ? 0 : *(it - 1);
}

std::int64_t FrameIndex::seekStamp(std::int64_t keyframe) const {
    const auto it = std::lower_bound(keyframes_.begin(), keyframes_.end(), keyframe);
    if (it == keyframes_.end() || *it != keyframe) {
        return stamp(clampFrame(keyframe));
    }
    return seekStamps_[static_cast<size_t>(it - keyframes_.begin())];
}

std::int64_t FrameIndex::keyframeBefore(std::int64_t keyframe) const {
    const auto it = std::lower_bound(keyframes_.begin(), keyframes_.end(), keyframe);
    return it == keyframes_.begin() ? -1 : *(it - 1);
}

} // namespace ravelcue::media::ffmpeg
