#include "BreakSpeedLog.h"

#include "core/NumberFormat.h"
#include "core/TextNumbers.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace ravelcue::breakspeed {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

void skipBlanks(std::string_view& text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
}

// Reads one field from the front of text: "quoted" or bare up to the next comma.
std::optional<std::string> takeField(std::string_view& text) {
    skipBlanks(text);
    if (!text.empty() && text.front() == '"') {
        const size_t close = text.find('"', 1);
        if (close == std::string_view::npos) {
            return std::nullopt;
        }
        std::string field(text.substr(1, close - 1));
        text.remove_prefix(close + 1);
        skipBlanks(text);
        return field;
    }
    size_t end = text.find(',');
    if (end == std::string_view::npos) {
        end = text.size();
    }
    std::string_view bare = text.substr(0, end);
    if (bare.find('"') != std::string_view::npos) {
        return std::nullopt;
    }
    text.remove_prefix(end);
    while (!bare.empty() && isBlank(bare.back())) {
        bare.remove_suffix(1);
    }
    return std::string(bare);
}

bool flushToDisk(std::FILE* file) {
    if (std::fflush(file) != 0) {
        return false;
    }
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

} // namespace

std::optional<LogEntry> ParseLogLine(std::string_view line) {
    std::array<std::string, 4> fields;
    for (size_t i = 0; i < fields.size(); ++i) {
        std::optional<std::string> field = takeField(line);
        if (!field) {
            return std::nullopt;
        }
        fields[i] = std::move(*field);
        const bool last = i + 1 == fields.size();
        if (last ? !line.empty() : (line.empty() || line.front() != ',')) {
            return std::nullopt;
        }
        if (!last) {
            line.remove_prefix(1);
        }
    }
    return LogEntry{std::move(fields[0]), std::move(fields[1]), std::move(fields[2]),
                    std::move(fields[3])};
}

std::vector<LogRow> ParseLog(std::string_view text) {
    std::vector<LogRow> rows;
    while (!text.empty()) {
        size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        if (line.empty()) {
            continue;
        }
        if (std::optional<LogEntry> entry = ParseLogLine(line)) {
            rows.emplace_back(std::move(*entry));
        } else {
            rows.emplace_back(UnreadableLine{std::string(line)});
        }
    }
    return rows;
}

std::string LogField(std::string_view text) {
    std::string field(text);
    for (char& c : field) {
        if (c == '"') {
            c = '\'';
        } else if (c == '\r' || c == '\n') {
            c = ' ';
        }
    }
    return field;
}

std::string LogText(std::span<const LogRow> rows) {
    std::string text;
    for (const LogRow& row : rows) {
        if (const auto* entry = std::get_if<LogEntry>(&row)) {
            for (const std::string* field :
                 {&entry->date, &entry->name, &entry->speed, &entry->energy}) {
                if (field != &entry->date) {
                    text += ',';
                }
                text += '"';
                text += LogField(*field);
                text += '"';
            }
        } else {
            text += std::get<UnreadableLine>(row).text;
        }
        text += "\r\n";
    }
    return text;
}

std::optional<std::vector<LogRow>> ReadLogFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return error ? std::nullopt : std::optional<std::vector<LogRow>>(std::vector<LogRow>{});
    }
    const FilePtr file(std::fopen(path.string().c_str(), "rb"));
    if (!file) {
        return std::nullopt;
    }
    std::string text;
    char buffer[8192];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
        text.append(buffer, got);
    }
    if (std::ferror(file.get()) != 0) {
        return std::nullopt;
    }
    return ParseLog(text);
}

bool SaveLogFile(const std::filesystem::path& path, std::span<const LogRow> rows) {
    const std::string text = LogText(rows);
    std::filesystem::path saving = path;
    saving += ".saving";
    std::error_code error;
    bool written = false;
    {
        FilePtr file(std::fopen(saving.string().c_str(), "wb"));
        if (file) {
            written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                      flushToDisk(file.get());
            written = (std::fclose(file.release()) == 0) && written;
        }
    }
    if (written) {
        std::filesystem::rename(saving, path, error);
        if (!error) {
            return true;
        }
    }
    std::filesystem::remove(saving, error);
    return false;
}

namespace {
std::optional<double> speedValue(const std::string& text) {
    const std::optional<double> value = parseNumber(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}
} // namespace

std::vector<std::size_t> UnreadableSpeeds(std::span<const std::string> speeds) {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < speeds.size(); ++i) {
        if (!speedValue(speeds[i])) {
            positions.push_back(i);
        }
    }
    return positions;
}

std::optional<LogStatistics> BreakSpeedStatistics(std::span<const std::string> speeds) {
    LogStatistics statistics;
    std::vector<double> values;
    for (const std::string& text : speeds) {
        if (const std::optional<double> value = speedValue(text)) {
            values.push_back(*value);
        } else {
            ++statistics.leftOut;
        }
    }
    statistics.counted = static_cast<int>(values.size());
    if (values.size() < 2) {
        return std::nullopt;
    }
    // Rows are visited from the last to the first; the order only shows in the last bits.
    double sum = 0;
    for (auto it = values.rbegin(); it != values.rend(); ++it) {
        sum += *it;
    }
    statistics.mean = static_cast<float>(sum / static_cast<double>(values.size()));
    double sumOfSquares = 0;
    for (auto it = values.rbegin(); it != values.rend(); ++it) {
        const double deviation = *it - static_cast<double>(statistics.mean);
        sumOfSquares += deviation * deviation;
    }
    statistics.sd = std::sqrt(sumOfSquares / static_cast<double>(values.size() - 1));
    // The energy of the mean speed, in 32-bit steps: mass, speed in metres a second, energy.
    const float mass = 0.168F;
    const auto metresPerSecond = static_cast<float>(static_cast<double>(statistics.mean) * 0.447);
    statistics.energy = metresPerSecond * metresPerSecond * mass / 2.0F;
    return statistics;
}

StatisticsTexts FormatStatistics(const LogStatistics& statistics) {
    return {Format(statistics.mean, "#.00"), Format(statistics.sd, "#.00"),
            Format(statistics.energy, "#.00")};
}

} // namespace ravelcue::breakspeed
