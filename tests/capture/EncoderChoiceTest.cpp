#include "capture/EncoderChoice.h"

#include <vector>

#include <gtest/gtest.h>

namespace ravelcue::capture {
namespace {

const std::vector<std::string> kCodecs{"MJPEG", "H.264", "MPEG-4", "FFV1", "HuffYUV"};
const std::vector<std::string> kProfiles{"Video for dial-up modems (28.8 Kbps)",
                                         "Video for broadband NTSC (1500 Kbps total)"};

std::string codec(int n) {
    return kCodecs.at(static_cast<size_t>(n));
}
std::string profile(int n) {
    return kProfiles.at(static_cast<size_t>(n));
}

TEST(EncoderChoice, ByNameInAnyCaseOrTheFirstEntry) {
    const EncoderChoice h264 = chooseAviCodec("h.264", 5, codec);
    EXPECT_EQ(h264.index, 1);
    EXPECT_EQ(h264.name, "h.264") << "the status bar shows the name as stored";
    EXPECT_EQ(chooseAviCodec("yuv", 5, codec).index, 4) << "a part of the name is enough";
    EXPECT_EQ(chooseAviCodec("XviD", 5, codec).index, 0) << "unknown: the first entry";

    const EncoderChoice none = chooseAviCodec("None", 5, codec);
    EXPECT_TRUE(none.uncompressed);
    EXPECT_EQ(none.index, -1);
    const EncoderChoice empty = chooseAviCodec("", 5, codec);
    EXPECT_EQ(empty.name, "Microsoft Video 1");
    EXPECT_EQ(empty.index, 0);
    EXPECT_FALSE(empty.uncompressed);

    EXPECT_EQ(chooseWmvProfile("1500", 2, profile).index, 1);
    EXPECT_EQ(chooseWmvProfile("", 2, profile).name, "Video for broadband NTSC (1500 Kbps total)");
    EXPECT_EQ(chooseWmvProfile("", 2, profile).index, 0) << "whichever profile that is";
    const EncoderChoice missing = chooseWmvProfile("Video for PDAs", 2, profile);
    EXPECT_EQ(missing.index, 0);
    EXPECT_EQ(missing.name, "Video for PDAs");
}

} // namespace
} // namespace ravelcue::capture
