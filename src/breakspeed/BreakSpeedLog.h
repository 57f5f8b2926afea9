#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// BreakSpeedLog.txt: one entry a line, four fields each in double quotes, a comma and nothing else
// between them, CR LF at the end: "date","name","speed","energy". The fields are text as the user
// saw it, units and format included. The file is read whole and written whole.
namespace ravelcue::breakspeed {

struct LogEntry {
    std::string date;
    std::string name;
    std::string speed;
    std::string energy;
    bool operator==(const LogEntry&) const = default;
};

// A line that is not four fields (a hand edit, a quote too many) is kept as it stood, so that
// saving the log never loses it.
struct UnreadableLine {
    std::string text; // without its line end
    bool operator==(const UnreadableLine&) const = default;
};

using LogRow = std::variant<LogEntry, UnreadableLine>;

// One line to an entry. Blanks around the fields are allowed, and a field without quotes is read
// up to the next comma; a quote inside a field, or other than four fields, makes it unreadable.
std::optional<LogEntry> ParseLogLine(std::string_view line);

// The whole file to rows, in file order. Lines may end in CR LF or LF; empty lines are skipped.
std::vector<LogRow> ParseLog(std::string_view text);

// A field as it can be written: a double quote becomes a single one and a line break a blank,
// since the format has no way to write either.
std::string LogField(std::string_view text);

// Rows to the file's text: entries in the format, unreadable lines as they stood, each + CR LF.
std::string LogText(std::span<const LogRow> rows);

// The rows of the file; an empty list when there is no file yet, nothing when it can't be read.
std::optional<std::vector<LogRow>> ReadLogFile(const std::filesystem::path& path);

// Writes the log whole through a file beside it that then takes its place, so that a crash or a
// full disk during the save leaves the old log as it was. False when the save failed.
bool SaveLogFile(const std::filesystem::path& path, std::span<const LogRow> rows);

// Mean, sample standard deviation and the energy at the mean speed of the selected speeds.
struct LogStatistics {
    float mean = 0;
    double sd = 0;
    float energy = 0;
    int counted = 0; // speeds that were numbers
    int leftOut = 0; // speeds that were not, and so are not part of the figures
};

// Nothing when fewer than two of the texts are numbers.
std::optional<LogStatistics> BreakSpeedStatistics(std::span<const std::string> speeds);
// The positions of the speeds that are not numbers, which the statistics leave out.
std::vector<std::size_t> UnreadableSpeeds(std::span<const std::string> speeds);

// The three figures as lblMean, lblSD and lblEnergy show them.
struct StatisticsTexts {
    std::string mean;
    std::string sd;
    std::string energy;
};
StatisticsTexts FormatStatistics(const LogStatistics& statistics);

} // namespace ravelcue::breakspeed
