#include "breakspeed/BreakSpeedLog.h"

#include "Recordings.h"

#include <gtest/gtest.h>

namespace ravelcue::breakspeed {
namespace {

const std::vector<LogRow> kRows{
    LogEntry{"21/03/2024", "Ann", "27.26", "12.48"},
    LogEntry{"22/03/2024", "Bob Smith", "36.00 ", ""},
    LogEntry{"", "", "", ""},
};
const std::string kText = "\"21/03/2024\",\"Ann\",\"27.26\",\"12.48\"\r\n"
                          "\"22/03/2024\",\"Bob Smith\",\"36.00 \",\"\"\r\n"
                          "\"\",\"\",\"\",\"\"\r\n";

TEST(BreakSpeedLog, FileFormatToTheByteBothWays) {
    EXPECT_EQ(LogText(kRows), kText);
    EXPECT_EQ(ParseLog(kText), kRows);
    test::ScratchFolder folder;
    const auto path = folder.file("BreakSpeedLog.txt");
    EXPECT_EQ(ReadLogFile(path), std::vector<LogRow>{}); // no log yet: an empty list
    ASSERT_TRUE(SaveLogFile(path, kRows));
    EXPECT_EQ(test::ReadBytes(path), kText);
    EXPECT_EQ(ReadLogFile(path), kRows);
    ASSERT_TRUE(SaveLogFile(path, {})); // an empty list leaves an empty file
    EXPECT_EQ(test::ReadBytes(path), "");
}

TEST(BreakSpeedLog, LinesThatCantBeReadAreKeptAsTheyStood) {
    const std::string text = "\"1/1/24\",\"Ann\",\"20\",\"5\"\r\n"
                             "\"1/1/24\",\"An\"n\",\"20\",\"5\"\r\n" // a quote too many
                             "a note typed by hand\n"                // LF only
                             "\"1/1/24\",\"Ann\",\"20\"\r\n"         // three fields
                             "\"1/1/24\",\"Ann\",\"20\",\"5\",\"x\"\r\n"
                             "\r\n"                                  // empty: skipped
                             " \"2/1/24\" , \"Bob\",\"22\",\"6\" \n" // blanks are fine
                             "3/1/24,Cy,24,7";                       // bare fields too
    const std::vector<LogRow> rows = ParseLog(text);
    EXPECT_EQ(rows, (std::vector<LogRow>{
                        LogEntry{"1/1/24", "Ann", "20", "5"},
                        UnreadableLine{"\"1/1/24\",\"An\"n\",\"20\",\"5\""},
                        UnreadableLine{"a note typed by hand"},
                        UnreadableLine{"\"1/1/24\",\"Ann\",\"20\""},
                        UnreadableLine{"\"1/1/24\",\"Ann\",\"20\",\"5\",\"x\""},
                        LogEntry{"2/1/24", "Bob", "22", "6"},
                        LogEntry{"3/1/24", "Cy", "24", "7"},
                    }));
    // Written back, the unreadable lines stand unchanged and in their places.
    EXPECT_EQ(LogText(rows), "\"1/1/24\",\"Ann\",\"20\",\"5\"\r\n"
                             "\"1/1/24\",\"An\"n\",\"20\",\"5\"\r\n"
                             "a note typed by hand\r\n"
                             "\"1/1/24\",\"Ann\",\"20\"\r\n"
                             "\"1/1/24\",\"Ann\",\"20\",\"5\",\"x\"\r\n"
                             "\"2/1/24\",\"Bob\",\"22\",\"6\"\r\n"
                             "\"3/1/24\",\"Cy\",\"24\",\"7\"\r\n");
    // What the format can't hold is changed so that the line reads back.
    const std::vector<LogRow> awkward{LogEntry{"1/1/24", "Ann \"Ace\"\r\nJones", "20", "5"}};
    EXPECT_EQ(ParseLog(LogText(awkward)),
              (std::vector<LogRow>{LogEntry{"1/1/24", "Ann 'Ace'  Jones", "20", "5"}}));
}

TEST(BreakSpeedLog, StatisticsOfTheSelectedSpeeds) {
    auto texts = [](std::vector<std::string> speeds) {
        return FormatStatistics(*BreakSpeedStatistics(speeds));
    };
    const StatisticsTexts t = texts({"20", "22", "24"});
    EXPECT_EQ((std::vector{t.mean, t.sd, t.energy}),
              (std::vector<std::string>{"22.00", "2.00", "8.12"}));
    EXPECT_EQ(texts({"25.5", "25.5"}).sd, ".00");
    EXPECT_EQ(texts({"0.8", "0.9"}).mean, ".85");

    // Fewer than two numbers: no figures. Texts that aren't numbers are left out and counted.
    EXPECT_FALSE(BreakSpeedStatistics(std::vector<std::string>{"20"}));
    EXPECT_FALSE(BreakSpeedStatistics(std::vector<std::string>{"20", "fast"}));
    const auto partial = BreakSpeedStatistics(std::vector<std::string>{"20", "n/a", "24"});
    ASSERT_TRUE(partial);
    EXPECT_EQ(partial->counted, 2);
    EXPECT_EQ(partial->leftOut, 1);
    EXPECT_EQ(FormatStatistics(*partial).mean, "22.00");
}

TEST(BreakSpeedLog, AFailedSaveSaysSoAndLeavesNothingBehind) {
    // A full disk in the middle of a save is tried through the dialog, in the pane's tests.
    test::ScratchFolder folder;
    EXPECT_FALSE(SaveLogFile(folder.file("gone") / "BreakSpeedLog.txt", kRows)); // no folder
    // The log's name taken by a folder: the save can't take its place.
    const auto blocked = folder.file("BreakSpeedLog.txt");
    std::filesystem::create_directories(blocked / "inside");
    EXPECT_FALSE(SaveLogFile(blocked, kRows));
    EXPECT_TRUE(std::filesystem::is_directory(blocked / "inside"));
    // Nothing half-written is left lying about.
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_EQ(entry.path(), blocked);
    }
}

} // namespace
} // namespace ravelcue::breakspeed
