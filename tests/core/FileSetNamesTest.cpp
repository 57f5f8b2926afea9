#include "core/FileSetNames.h"

#include <gtest/gtest.h>

namespace ravelcue::names {
namespace {

constexpr const char* kVideos = "/home/p/.local/share/Ravelcue/Videos/";

TEST(FileSetNames, MembersAreBaseNicknameAndExtension) {
    EXPECT_EQ(memberPath(kVideos, "match1", "Cam1", captureExtension("AVI")),
              std::string(kVideos) + "match1(Cam1).avi");
    EXPECT_EQ(memberPath(kVideos, "break shot", "Left Rail", captureExtension("WMV")),
              std::string(kVideos) + "break shot(Left Rail).wmv");
    EXPECT_EQ(captureExtension("avi"), "") << "the type word is exact";
    EXPECT_TRUE(isValidBaseName("match 1.v2"));
    EXPECT_FALSE(isValidBaseName("match(1)"));
    EXPECT_FALSE(isValidBaseName("a+b"));
}

TEST(FileSetNames, OverwritePatternIsWiderThanTheSet) {
    struct Case {
        const char* file;
        const char* base;
        const char* extension;
        bool exact;   // on a file system that tells cases apart
        bool ignored; // on one that does not
    };
    const Case cases[] = {
        {"abcd(Cam1).wmv", "abc", ".wmv", true, true},
        {"abc.avi", "abc", ".avi", true, true},
        {"abc(Cam2).AVI", "abc", ".avi", true, true},
        {"abcd(Cam1).wmv", "abc", ".avi", false, false},
        {"xabc.avi", "abc", ".avi", false, false},
        {"ab.avi", "abc", ".avi", false, false},
        // Where names ignore case, Match1 would write over match1's Set.
        {"match1(Cam1).avi", "Match1", ".avi", false, true},
        {"MATCH1(Cam1).AVI", "match1", ".avi", false, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(matchesCapturePattern(c.file, c.base, c.extension, NameCase::Exact), c.exact)
            << c.file << " " << c.base;
        EXPECT_EQ(matchesCapturePattern(c.file, c.base, c.extension, NameCase::Ignored), c.ignored)
            << c.file << " " << c.base;
    }
}

TEST(FileSetNames, APickedMemberBringsBackTheWholeSet) {
    const std::string picked = std::string(kVideos) + "match1(Cam3).avi";
    ASSERT_TRUE(isFileSetMember(picked));
    EXPECT_EQ(fileSetMemberOf(picked, "Cam1"), std::string(kVideos) + "match1(Cam1).avi");
    EXPECT_EQ(fileSetMemberOf(picked, "Side Rail"), std::string(kVideos) + "match1(Side Rail).avi");
    EXPECT_EQ(fileSetTitle(picked), "match1(****).");

    // A saved copy has a "+" and opens alone, though it has a bracket.
    EXPECT_FALSE(isFileSetMember(std::string(kVideos) + "match1(Cam1)+.avi"));
    EXPECT_FALSE(isFileSetMember(std::string(kVideos) + "match1.avi"));
    // A "(" in a folder ends the base there: no member can be found.
    const std::string bracketFolder = "/data/clips (old)/match1(Cam1).avi";
    EXPECT_EQ(fileSetMemberOf(bracketFolder, "Cam1"), "/data/clips (Cam1).avi");
}

TEST(FileSetNames, ImageSetsAreFoundByTheirStamp) {
    const std::string still = "/d/Ravelcue/Images/match1(Cam2)-140509.jpg";
    EXPECT_EQ(imageSetStamp(still), "140509");
    EXPECT_EQ(imageSetMemberOf(still, "Cam4"), "/d/Ravelcue/Images/match1(Cam4)-140509.jpg");
    EXPECT_EQ(imageSetTitle(still), "match1(****)-140509.jpg");
    // A "-" in a folder does not take the stamp's place.
    EXPECT_EQ(imageSetStamp("/home/anne-marie/a(Cam1)-120000.jpg"), "120000");
    EXPECT_EQ(imageSetMemberOf("/my-pics/a(Cam1)-120000.jpg", "Cam2"),
              "/my-pics/a(Cam2)-120000.jpg");
    // No "-" at all: the first six characters.
    EXPECT_EQ(imageSetStamp("/ab/c(Cam1).jpg"), "/ab/c(");
}

TEST(FileSetNames, StillNamesTakeTheStampAndTheImagesFolder) {
    EXPECT_EQ(stillStamp(14, 5, 9), "-140509");
    EXPECT_EQ(stillStamp(0, 0, 0), "-000000");
    const std::string data = "/home/p/.local/share/Ravelcue";
    const std::string member = std::string(kVideos) + "match1(Cam2).avi";
    struct Case {
        std::string source, type, nickname, stamp, still;
    };
    const Case cases[] = {
        {member, "avi", "Cam2", "-140509", data + "/Images/match1(Cam2)-140509.jpg"},
        // The nickname comes from the player the still is taken from.
        {member, "avi", "Cam4", "-140509", data + "/Images/match1(Cam4)-140509.jpg"},
        // A still of a still keeps its folder and replaces the old stamp.
        {"/i/match1(Cam2)-140509.jpg", "img", "Cam2", "-150000", "/i/match1(Cam2)-150000.jpg"},
        {"/i/photo.jpg", "img", "Cam1", "-150000", "/i/photo-150000.jpg"},
        {"/i/photo-150000.jpg", "img", "Cam1", "-150101", "/i/photo-150000-150101.jpg"},
        // A saved copy has a bracket, so the "+" falls away with the rest of the name.
        {std::string(kVideos) + "Break(Cam1)+.avi", "avi", "Cam1", "-090000",
         data + "/Images/Break(Cam1)-090000.jpg"},
        // A video outside the videos folder gets its still beside it; other formats work alike.
        {"/clips/phone.MP4", "mp4", "Cam1", "-101010", "/clips/phone-101010.jpg"},
        // Only the data folder's own Videos folder turns into Images: not the user's ~/Videos,
        // nor a folder of ours that merely begins with the same letters.
        {"/home/p/Videos/match1(Cam1).avi", "avi", "Cam1", "-101010",
         "/home/p/Videos/match1(Cam1)-101010.jpg"},
        {data + "/Videos/old/Videos/a.mkv", "mkv", "Cam1", "-101010",
         data + "/Images/old/Videos/a-101010.jpg"},
        {data + "/Videos2/a.mp4", "mp4", "Cam1", "-101010", data + "/Videos2/a-101010.jpg"},
        {"/clips/x.avi", "", "Cam1", "-101010", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(stillImageName(c.source, c.type, c.nickname, c.stamp, data), c.still) << c.source;
    }
}

TEST(FileSetNames, SavedCopiesGetAPlusBesideTheirSource) {
    EXPECT_EQ(savedVideoSource("/v/Break(Cam3).avi", "Cam1"), "/v/Break(Cam1).avi");
    EXPECT_EQ(savedVideoSource("/v/clip.wmv", "Cam1"), "/v/clip.wmv");
    EXPECT_EQ(savedVideoDestination("/v/Break(Cam1).avi"), "/v/Break(Cam1)+.avi");
    EXPECT_EQ(savedVideoDestination("/v/clip.wmv"), "/v/clip+.wmv");
    EXPECT_EQ(savedVideoDestination("/v/CLIP.AVI"), "/v/CLIP+.AVI") << "never the source itself";
    EXPECT_EQ(savedVideoDestination("/v/Take.Mp4"), "/v/Take+.Mp4");
    EXPECT_EQ(savedVideoDestination("/v/clip+.mkv"), "/v/clip++.mkv") << "a saved copy saved again";
    // Saved again after reopening: the member without the "+" is read.
    EXPECT_EQ(savedVideoSource("/v/Break(Cam1)+.avi", "Cam1"), "/v/Break(Cam1).avi");
}

} // namespace
} // namespace ravelcue::names
