#include "playback/OpenPlan.h"

#include "core/FileSetNames.h"

#include <set>

#include <gtest/gtest.h>

namespace ravelcue::playback {
namespace {

const Nicknames kCams{"Cam1", "Cam2", "Cam3", "Cam4"};

FileExists onDisk(std::set<std::string> files) {
    return [files = std::move(files)](const std::string& path) { return files.count(path) > 0; };
}

TEST(OpenPlan, APickedMemberFindsTheMembersOfItsSet) {
    const auto disk = onDisk({"/d/Videos/match1(Cam1).avi", "/d/Videos/match1(Cam3).avi"});
    const OpenPlan plan = planVideoOpen("/d/Videos/match1(Cam3).avi", kCams, disk);
    EXPECT_EQ(plan.way, OpenWay::FileSet);
    EXPECT_EQ(plan.present, (std::array<bool, 4>{true, false, true, false}));
    EXPECT_EQ(plan.members[1], "/d/Videos/match1(Cam2).avi");
    EXPECT_EQ(plan.firstPresent(), 0);
    EXPECT_EQ(plan.title, "match1(****).");

    // Members are found by the nicknames in force, whatever they are.
    const OpenPlan renamed =
        planVideoOpen("/d/Videos/match1(Cam3).avi", {"Left", "Cam2", "Cam3", "Right"}, disk);
    EXPECT_EQ(renamed.presentCount(), 1);
    EXPECT_EQ(renamed.firstPresent(), 2);

    const OpenPlan one =
        planVideoOpen("/d/Videos/solo(Cam4).wmv", kCams, onDisk({"/d/Videos/solo(Cam4).wmv"}));
    EXPECT_EQ(one.presentCount(), 1);
    EXPECT_EQ(one.firstPresent(), 3);

    // No camera's name finds a member (the cameras were renamed since): no player to take.
    const OpenPlan none = planVideoOpen("/d/Videos/match1(Cam3).avi", {"A", "B", "C", "D"}, disk);
    EXPECT_EQ(none.presentCount(), 0);
    EXPECT_EQ(none.firstPresent(), -1);
}

TEST(OpenPlan, ImageSetsAreBoundByTheStampOfTheirStills) {
    // Stills of one Set taken at 14:05:09 open again as that Set, and a later still does not join.
    const std::string stamp = names::stillStamp(14, 5, 9);
    const std::string cam1 =
        names::stillImageName("/d/Videos/match1(Cam3).avi", "avi", "Cam1", stamp, "/d");
    const std::string cam3 =
        names::stillImageName("/d/Videos/match1(Cam3).avi", "avi", "Cam3", stamp, "/d");
    const std::string later = names::stillImageName("/d/Videos/match1(Cam3).avi", "avi", "Cam2",
                                                    names::stillStamp(14, 5, 10), "/d");
    ASSERT_EQ(cam3, "/d/Images/match1(Cam3)-140509.jpg");
    const OpenPlan plan = planImageOpen(cam3, kCams, onDisk({cam1, cam3, later}));
    EXPECT_EQ(plan.way, OpenWay::ImageSet);
    EXPECT_EQ(plan.present, (std::array<bool, 4>{true, false, true, false}));
    EXPECT_EQ(plan.title, "match1(****)-140509.jpg");

    // A "-" in a folder is no stamp; a name with none after its bracket finds nothing.
    const std::string dashed = "/d/my-pics/a(Cam1)-120000.jpg";
    EXPECT_EQ(planImageOpen(dashed, kCams, onDisk({dashed})).presentCount(), 1);
    const std::string unstamped = "/d/my-pics/a(Cam1).jpg";
    EXPECT_EQ(planImageOpen(unstamped, kCams, onDisk({unstamped})).presentCount(), 0);

    const OpenPlan photo = planImageOpen("/d/Images/photo-150000.jpg", kCams, onDisk({}));
    EXPECT_EQ(photo.way, OpenWay::Single) << "no bracket: a single picture";
    EXPECT_EQ(photo.title, "photo-150000.jpg");
}

} // namespace
} // namespace ravelcue::playback
