// BreakSpeedLog.txt as the log dialog reads it, the text it saves, and the statistics of the
// speeds in it.
#include "FuzzInput.h"
#include "breakspeed/BreakSpeedLog.h"

#include <variant>

using namespace ravelcue::breakspeed;

namespace {

// What a row becomes once saved: the fields as the format can write them, other lines as they
// stood.
LogRow asSaved(const LogRow& row) {
    if (const auto* entry = std::get_if<LogEntry>(&row)) {
        return LogEntry{LogField(entry->date), LogField(entry->name), LogField(entry->speed),
                        LogField(entry->energy)};
    }
    return row;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::filesystem::path path = ravelcue::fuzz::inputFile("BreakSpeedLog.txt", data, size);
    const std::optional<std::vector<LogRow>> rows = ReadLogFile(path);
    ravelcue::fuzz::check(rows.has_value(), "a log file that exists is read");
    ravelcue::fuzz::check(*rows == ParseLog(ravelcue::fuzz::asText(data, size)),
                          "the file reads as its text parses");

    // Saving keeps every row: what is read back is what was saved. (The save itself writes this
    // text; it is left out here because it waits for the disk.)
    std::vector<LogRow> saved;
    for (const LogRow& row : *rows) {
        saved.push_back(asSaved(row));
    }
    ravelcue::fuzz::check(ParseLog(LogText(*rows)) == saved, "a saved log reads back row for row");

    std::vector<std::string> speeds;
    for (const LogRow& row : *rows) {
        if (const auto* entry = std::get_if<LogEntry>(&row)) {
            speeds.push_back(entry->speed);
        }
    }
    const std::vector<std::size_t> unreadable = UnreadableSpeeds(speeds);
    if (const std::optional<LogStatistics> statistics = BreakSpeedStatistics(speeds)) {
        ravelcue::fuzz::check(statistics->leftOut == static_cast<int>(unreadable.size()),
                              "the statistics leave out the speeds that are not numbers");
        ravelcue::fuzz::check(statistics->counted + statistics->leftOut ==
                                  static_cast<int>(speeds.size()),
                              "every speed is counted or left out");
        FormatStatistics(*statistics);
    }
    return 0;
}
