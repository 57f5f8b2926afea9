#include "EncoderChoice.h"

#include "core/AppSettings.h"
#include "core/TextCase.h"

#include <algorithm>
#include <cctype>

namespace ravelcue::capture {

namespace {

int firstHolding(const std::string& name, int count,
                 const std::function<std::string(int)>& nameOf) {
    const std::string wanted = asciiLower(name);
    for (int n = 0; n < count; ++n) {
        if (asciiLower(nameOf(n)).find(wanted) != std::string::npos) {
            return n;
        }
    }
    return 0;
}

} // namespace

EncoderChoice chooseAviCodec(const std::string& aviCodec, int count,
                             const std::function<std::string(int)>& nameOf) {
    if (aviCodec.empty()) {
        return {kDefaultAviCodecName, 0, false};
    }
    if (aviCodec == "None") {
        return {"None", -1, true};
    }
    return {aviCodec, firstHolding(aviCodec, count, nameOf), false};
}

EncoderChoice chooseWmvProfile(const std::string& wmvProfile, int count,
                               const std::function<std::string(int)>& nameOf) {
    if (wmvProfile.empty()) {
        return {kDefaultWmvProfile, 0, false};
    }
    return {wmvProfile, firstHolding(wmvProfile, count, nameOf), false};
}

} // namespace ravelcue::capture
