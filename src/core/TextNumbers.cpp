#include "TextNumbers.h"

#include "Rounding.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace ravelcue {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
        text.remove_prefix(1);
    }
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) {
        text.remove_suffix(1);
    }
    return text;
}

// Length of the longest prefix that is a decimal number: sign, digits, point, digits, exponent.
size_t numberPrefixLength(std::string_view text) {
    size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        ++i;
    }
    size_t digits = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) {
        ++i;
        ++digits;
    }
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0) {
        return 0;
    }
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        size_t j = i + 1;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            ++j;
        }
        size_t expDigits = 0;
        while (j < text.size() && std::isdigit(static_cast<unsigned char>(text[j]))) {
            ++j;
            ++expDigits;
        }
        if (expDigits > 0) {
            i = j;
        }
    }
    return i;
}

double toDouble(std::string_view number) {
    const std::string copy(number);
    return std::strtod(copy.c_str(), nullptr);
}

} // namespace

double leadingNumber(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
        text.remove_prefix(1);
    }
    const size_t length = numberPrefixLength(text);
    return length == 0 ? 0.0 : toDouble(text.substr(0, length));
}

std::optional<double> parseNumber(std::string_view text) {
    text = trimmed(text);
    const size_t length = numberPrefixLength(text);
    if (length == 0 || length != text.size()) {
        return std::nullopt;
    }
    return toDouble(text);
}

std::optional<long long> parseInteger(std::string_view text, long long min, long long max) {
    const std::optional<double> number = parseNumber(text);
    if (!number || *number < static_cast<double>(min) - 0.5 ||
        *number > static_cast<double>(max) + 0.5) {
        return std::nullopt;
    }
    const long long value = roundHalfEven(*number);
    if (value < min || value > max) {
        return std::nullopt;
    }
    return value;
}

std::string floatText(float value) {
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

} // namespace ravelcue
