#include "breakspeed/BreakSpeedLog.h"

#include "Recordings.h"

#include <csignal>
#include <sys/resource.h>

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
    EXPECT_EQ(LogText(std::vector<LogRow>{}), "");

    test::ScratchFolder folder;
    const auto path = folder.file("BreakSpeedLog.txt");
    EXPECT_EQ(ReadLogFile(path), std::vector<LogRow>{}); // no log yet: an empty list
    ASSERT_TRUE(SaveLogFile(path, kRows));
    EXPECT_EQ(test::ReadBytes(path), kText);
    EXPECT_EQ(ReadLogFile(path), kRows);

    // An empty list leaves an empty file.
    ASSERT_TRUE(SaveLogFile(path, {}));
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
    const std::vector<LogRow> expected{
        LogEntry{"1/1/24", "Ann", "20", "5"},
        UnreadableLine{"\"1/1/24\",\"An\"n\",\"20\",\"5\""},
        UnreadableLine{"a note typed by hand"},
        UnreadableLine{"\"1/1/24\",\"Ann\",\"20\""},
        UnreadableLine{"\"1/1/24\",\"Ann\",\"20\",\"5\",\"x\""},
        LogEntry{"2/1/24", "Bob", "22", "6"},
        LogEntry{"3/1/24", "Cy", "24", "7"},
    };
    EXPECT_EQ(rows, expected);

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
    const std::vector<std::string> speeds{"20", "22", "24"};
    const auto stats = BreakSpeedStatistics(speeds);
    ASSERT_TRUE(stats);
    const StatisticsTexts texts = FormatStatistics(*stats);
    EXPECT_EQ(texts.mean, "22.00");
    EXPECT_EQ(texts.sd, "2.00");
    EXPECT_EQ(texts.energy, "8.12");

    const std::vector<std::string> equal{"25.5", "25.5"};
    EXPECT_EQ(FormatStatistics(*BreakSpeedStatistics(equal)).sd, ".00");
    const std::vector<std::string> slow{"0.8", "0.9"};
    EXPECT_EQ(FormatStatistics(*BreakSpeedStatistics(slow)).mean, ".85");

    // Fewer than two numbers: no figures. Texts that aren't numbers are left out and counted.
    const std::vector<std::string> one{"20"};
    const std::vector<std::string> oneAndText{"20", "fast"};
    EXPECT_FALSE(BreakSpeedStatistics(one));
    EXPECT_FALSE(BreakSpeedStatistics(oneAndText));
    const std::vector<std::string> mixed{"20", "n/a", "24"};
    const auto partial = BreakSpeedStatistics(mixed);
    ASSERT_TRUE(partial);
    EXPECT_EQ(partial->counted, 2);
    EXPECT_EQ(partial->leftOut, 1);
    EXPECT_EQ(FormatStatistics(*partial).mean, "22.00");
}

TEST(BreakSpeedLog, AFailedSaveSaysSoAndLeavesTheOldLog) {
    test::ScratchFolder folder;
    const auto path = folder.file("BreakSpeedLog.txt");
    ASSERT_TRUE(SaveLogFile(path, kRows));

    // No folder to save into.
    EXPECT_FALSE(SaveLogFile(folder.file("gone") / "BreakSpeedLog.txt", kRows));

    // The disk fills in the middle of the save: a file size limit makes the write fail as a
    // full disk would.
    std::vector<LogRow> many(2000, LogEntry{"21/03/2024", "Someone", "30.00", "15.00"});
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved4k = SaveLogFile(path, many);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(saved4k);
    EXPECT_EQ(test::ReadBytes(path), kText);

    // The log's name taken by a folder: the save can't take its place.
    const auto blocked = folder.file("blocked.txt");
    std::filesystem::create_directories(blocked / "inside");
    EXPECT_FALSE(SaveLogFile(blocked, kRows));
    EXPECT_TRUE(std::filesystem::is_directory(blocked / "inside"));

    // Nothing half-written is left lying about.
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_TRUE(entry.path().filename() == "BreakSpeedLog.txt" ||
                    entry.path().filename() == "blocked.txt")
            << entry.path();
    }
}

} // namespace
} // namespace ravelcue::breakspeed
