#include "utilities/FileDeleteLayout.h"
#include "utilities/FileListing.h"
#include "utilities/UpdateInfo.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace ravelcue::utilities {
namespace {

void writeFile(const QString& path, qint64 bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(bytes, 'x'));
}

TEST(FileListing, SizeTextRoundsKilobytesAndShowsNothingForZero) {
    EXPECT_EQ(sizeText(0), " KB");
    EXPECT_EQ(sizeText(499), " KB");
    EXPECT_EQ(sizeText(500), "1 KB");
    EXPECT_EQ(sizeText(1500000), "1,500 KB");
    EXPECT_EQ(sizeText(1234567890), "1,234,568 KB");
}

TEST(FileListing, ListsEveryFileOfTheFolderAndNoSubfolder) {
    QTemporaryDir dir;
    const QDir folder(dir.path());
    writeFile(folder.filePath("clip(Cam1).avi"), 1500000);
    writeFile(folder.filePath("notes.txt"), 400);
    writeFile(folder.filePath(".hidden"), 1);
    folder.mkdir("sub");
    writeFile(folder.filePath("sub/inner.avi"), 1);

    QStringList names = ListFolderFiles(dir.path());
    names.sort();
    EXPECT_EQ(names, (QStringList{".hidden", "clip(Cam1).avi", "notes.txt"}));
    EXPECT_TRUE(ListFolderFiles(folder.filePath("missing")).isEmpty());
    EXPECT_TRUE(ListFolderFiles("").isEmpty());
}

TEST(FileDeleteLayout, ListsShareTheWidthTheRestFollowsAndSmallWindowsKeepWhatTheyHad) {
    const FileDeleteLayout l = resizeFileDelete(fileDeleteDesign(), 12600, 7200);
    EXPECT_EQ(l.lvVideoFiles, (TwipsRect{120, 780, 6015, 4830}));
    EXPECT_EQ(l.lvImageFiles, (TwipsRect{6240, 780, 6015, 4830}));
    EXPECT_EQ((std::pair{l.chkAllImages.left, l.chkAllImages.top}), (std::pair{6240.0, 5715.0}));
    EXPECT_EQ(l.chkAllVideos.top, 5715);
    EXPECT_EQ(l.Label3.left, 6240);
    EXPECT_EQ(l.Label1.left, 6300 - l.Label1.width / 2);
    EXPECT_EQ((std::pair{l.cmdDelete.left, l.cmdDelete.top}),
              (std::pair{6300 - l.cmdDelete.width / 2, 6135.0}));
    EXPECT_EQ((std::pair{l.cmdOK.left, l.cmdOK.top}), (std::pair{11160.0, 6135.0}));
    EXPECT_EQ((std::pair{l.cmdHelp.left, l.cmdHelp.top}), (std::pair{11160.0, 5655.0}));
    EXPECT_EQ((std::pair{l.cmdCancel.left, l.cmdCancel.top}), (std::pair{9960.0, 6135.0}));
    EXPECT_EQ((std::pair{l.videoColumns[0], l.imageColumns[0]}), (std::pair{1915.0, 1915.0}));

    for (const auto& [width, height] : {std::pair{7499.0, 9000.0}, std::pair{14000.0, 3999.0}}) {
        const FileDeleteLayout small = resizeFileDelete(l, width, height);
        EXPECT_EQ(small.lvVideoFiles, l.lvVideoFiles) << width << " x " << height;
        EXPECT_EQ(small.cmdOK, l.cmdOK);
    }
    // A list of 5100 twips or less leaves the name column alone; one twip more sets it.
    FileDeleteLayout narrow = l;
    narrow.videoColumns = {3333, 1000, 1500};
    EXPECT_EQ(resizeFileDelete(narrow, 10770, 6000).videoColumns[0], 3333);
    EXPECT_EQ(resizeFileDelete(narrow, 10772, 6000).videoColumns[0], 5101 - 1000 - 1500 - 400);
}

TEST(UpdateInfo, AppTextGivesTheTrimmedVersionAndTheInformation) {
    const auto app = parseAppText("  1.2.4 \t&&&Faster saving.\nNew grid.\r\nFixes.&&&ignored");
    ASSERT_TRUE(app);
    EXPECT_EQ(app->version, "1.2.4");
    EXPECT_EQ(app->information, "Faster saving.\nNew grid.\nFixes.");
    EXPECT_EQ(parseAppText(QChar(0xFEFF) + QString("2.0&&&x"))->version, "2.0");
    EXPECT_EQ(parseAppText("1.0.1&&&")->information, "");
    EXPECT_FALSE(parseAppText(""));
    EXPECT_FALSE(parseAppText("1.2.4"));
    EXPECT_FALSE(parseAppText("<html>Not Found</html>"));
}

TEST(UpdateInfo, VersionsAreComparedNumberByNumberAndUnreadableOnesSafely) {
    EXPECT_TRUE(isNewerVersion("1.2.4", "1.2.3"));
    EXPECT_TRUE(isNewerVersion("1.10.0", "1.9.0"));
    EXPECT_FALSE(isNewerVersion("1.2.3", "1.2.3"));
    EXPECT_FALSE(isNewerVersion("1.2.2", "1.2.3"));
    EXPECT_FALSE(isNewerVersion("1.9.0", "1.10.0"));
    EXPECT_FALSE(isNewerVersion("1.2", "1.2.0"));
    EXPECT_TRUE(isNewerVersion("1.2.0.1", "1.2"));
    EXPECT_TRUE(isNewerVersion("01.02.04", "1.2.3"));
    for (const char* unreadable : {"", "abc", "1..2", "1.2.x", "-2.0.0", "2.0 beta"}) {
        EXPECT_FALSE(isNewerVersion(unreadable, "1.0.0")) << unreadable;
    }
}

} // namespace
} // namespace ravelcue::utilities
