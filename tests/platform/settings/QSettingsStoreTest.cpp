#include "platform/settings/QSettingsStore.h"

#include "core/AppSettings.h"
#include "support/TempFolder.h"

#include <QFile>

#include <gtest/gtest.h>

namespace ravelcue {
namespace {

TEST(QSettingsStore, StoreIsCreatedAtFirstWriteAndReadsBack) {
    test::TempFolder folder;
    const QString path = folder.file("sub/Ravelcue.conf");
    {
        QSettingsStore store(path);
        EXPECT_FALSE(store.readText("Units"));
        EXPECT_FALSE(QFile::exists(path)) << "reading creates nothing";
        AppSettings s;
        s.CamNickname[1] = "Left, near";
        s.Distance = 144.605F;
        SaveSettings(store, s, "0");
        EXPECT_TRUE(store.writeText("Empty", ""));
    }
    ASSERT_TRUE(QFile::exists(path));
    QSettingsStore again(path);
    const AppSettings back = LoadSettings(again);
    EXPECT_EQ(back.CamNickname[1], "Left, near") << "a comma stays part of the text";
    EXPECT_FLOAT_EQ(back.Distance, 144.605F);
    EXPECT_EQ(again.readText("Empty"), std::string()) << "a stored empty text reads as empty";
    EXPECT_EQ(again.readText("Startup CheckForUpdate Enable"), std::string("0"));
}

TEST(QSettingsStore, HandEditedFileLoadsWithDefaultsForWhatDoesNotConvert) {
    test::TempFolder folder;
    const QString path = folder.file("Ravelcue.conf");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nUnits=abc\nMarker%20Width=5\nCamNickname-0=\"Break, cam\"\n"
               "Distance=\nCamEnable-1=1\n");
    file.close();
    QSettingsStore store(path);
    const AppSettings s = LoadSettings(store);
    EXPECT_EQ(s.Units, 0);
    EXPECT_EQ(s.MarkerWidth, 5);
    EXPECT_EQ(s.CamNickname[0], "Break, cam");
    EXPECT_FLOAT_EQ(s.Distance, 48.0F);
    EXPECT_EQ(s.CamEnable[1], 1);
}

} // namespace
} // namespace ravelcue
