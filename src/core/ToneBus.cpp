#include "ToneBus.h"

#include <algorithm>

namespace ravelcue {

void ToneBus::publish(const Tone& tone) {
    std::lock_guard lock(mutex_);
    // Tones long over are of no use to anyone; keep the list short.
    const Clock::time_point horizon = tone.start - std::chrono::minutes(1);
    std::erase_if(tones_, [&](const Tone& t) { return t.end() < horizon; });
    tones_.push_back(tone);
}

std::vector<ToneBus::Tone> ToneBus::tonesDuring(Clock::time_point from,
                                                Clock::time_point to) const {
    std::lock_guard lock(mutex_);
    std::vector<Tone> found;
    std::copy_if(tones_.begin(), tones_.end(), std::back_inserter(found),
                 [&](const Tone& t) { return t.start < to && t.end() > from; });
    return found;
}

} // namespace ravelcue
