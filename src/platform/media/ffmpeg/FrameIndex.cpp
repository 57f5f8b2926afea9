#include "FrameIndex.h"

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/mathematics.h>
}

#include <algorithm>

namespace ravelcue::media::ffmpeg {

namespace {

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

FrameIndex::FrameIndex(const std::vector<Packet>& packets, AVRational timeBase,
                       AVRational fallbackFrameRate)
    : timeBase_(timeBase) {
    framesCarryStamps_ = std::any_of(packets.begin(), packets.end(),
                                     [](const Packet& p) { return p.pts != AV_NOPTS_VALUE; });
    // A decoder drops what comes before the first keyframe, so those packets are no frames.
    auto start =
        std::find_if(packets.begin(), packets.end(), [](const Packet& p) { return p.keyframe; });
    if (start == packets.end()) {
        start = packets.begin(); // no keyframe flags at all: decode from the start
    }

    std::vector<std::int64_t> keyStamps;
    std::vector<std::int64_t> durations;
    std::int64_t previous = AV_NOPTS_VALUE;
    std::int64_t previousDuration = 1;
    for (auto it = start; it != packets.end(); ++it) {
        std::int64_t stampValue = framesCarryStamps_ ? it->pts : it->dts;
        if (stampValue == AV_NOPTS_VALUE) {
            stampValue = previous == AV_NOPTS_VALUE
                             ? 0
                             : previous + std::max<std::int64_t>(1, previousDuration);
        }
        stamps_.push_back(stampValue);
        durations.push_back(it->duration);
        if (it->keyframe || it == start) {
            keyStamps.push_back(stampValue);
        }
        previous = stampValue;
        previousDuration = it->duration;
    }

    std::vector<std::int64_t> sorted = stamps_;
    std::sort(sorted.begin(), sorted.end());
    const std::int64_t fallback = typicalDuration(sorted, timeBase, fallbackFrameRate);
    endStamp_ = sorted.empty() ? 0 : sorted.back() + fallback;
    for (size_t i = 0; i < stamps_.size(); ++i) {
        endStamp_ = std::max(endStamp_, stamps_[i] + (durations[i] > 0 ? durations[i] : fallback));
    }
    stamps_ = std::move(sorted);

    for (const std::int64_t key : keyStamps) {
        keyframes_.push_back(std::lower_bound(stamps_.begin(), stamps_.end(), key) -
                             stamps_.begin());
    }
    std::sort(keyframes_.begin(), keyframes_.end());
    keyframes_.erase(std::unique(keyframes_.begin(), keyframes_.end()), keyframes_.end());
    if (!stamps_.empty() && (keyframes_.empty() || keyframes_.front() != 0)) {
        keyframes_.insert(keyframes_.begin(), 0);
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

std::int64_t FrameIndex::keyframeBefore(std::int64_t keyframe) const {
    const auto it = std::lower_bound(keyframes_.begin(), keyframes_.end(), keyframe);
    return it == keyframes_.begin() ? -1 : *(it - 1);
}

} // namespace ravelcue::media::ffmpeg
