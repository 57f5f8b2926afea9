#include "NumberFormat.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace ravelcue {

namespace {

struct Token {
    enum Kind { Zero, Hash, Point, Comma, Percent, Literal };
    Kind kind;
    std::string text; // Literal only
};

bool isDigitPlace(const Token& token) {
    return token.kind == Token::Zero || token.kind == Token::Hash;
}

// Length of the UTF-8 character that starts with this byte, so that an escaped "\°" stays whole.
size_t characterLength(std::string_view text, size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    size_t length = 1;
    if (lead >= 0xF0) {
        length = 4;
    } else if (lead >= 0xE0) {
        length = 3;
    } else if (lead >= 0xC0) {
        length = 2;
    }
    return std::min(length, text.size() - at);
}

std::vector<Token> tokenize(std::string_view pattern) {
    std::vector<Token> tokens;
    bool pointSeen = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        switch (c) {
        case '0':
            tokens.push_back({Token::Zero, {}});
            break;
        case '#':
            tokens.push_back({Token::Hash, {}});
            break;
        case ',':
            tokens.push_back({Token::Comma, {}});
            break;
        case '%':
            tokens.push_back({Token::Percent, {}});
            break;
        case '.':
            // Only the first point is the decimal point; any later one is plain text.
            tokens.push_back({pointSeen ? Token::Literal : Token::Point, pointSeen ? "." : ""});
            pointSeen = true;
            break;
        case '\\':
            if (i + 1 < pattern.size()) {
                const size_t length = characterLength(pattern, i + 1);
                tokens.push_back({Token::Literal, std::string(pattern.substr(i + 1, length))});
                i += length;
            }
            break;
        case '"': {
            const size_t close = pattern.find('"', i + 1);
            const size_t end = close == std::string_view::npos ? pattern.size() : close;
            tokens.push_back({Token::Literal, std::string(pattern.substr(i + 1, end - i - 1))});
            i = end;
            break;
        }
        default:
            tokens.push_back({Token::Literal, std::string(1, c)});
            break;
        }
    }
    return tokens;
}

// The magnitude of a number as decimal digits with the point after pointPos of them, rounded to
// fractionPlaces, a tie going up. The number is taken at 15 significant digits first, so that a
// double just under a written decimal (1.005 is 1.00499999999999989...) rounds as the decimal.
struct Decimal {
    std::string digits;
    size_t pointPos = 0;
};

Decimal roundedDecimal(double magnitude, int powerOfTen, size_t fractionPlaces) {
    char text[40];
    std::snprintf(text, sizeof text, "%.14e", magnitude);
    std::string mantissa;
    const char* p = text;
    for (; *p != 'e'; ++p) {
        if (*p != '.') {
            mantissa.push_back(*p);
        }
    }
    const int exponent = std::atoi(p + 1) + (magnitude == 0.0 ? 0 : powerOfTen);

    Decimal d;
    if (exponent >= 0) {
        d.pointPos = static_cast<size_t>(exponent) + 1;
        d.digits = mantissa;
    } else {
        d.pointPos = 0;
        d.digits = std::string(static_cast<size_t>(-exponent - 1), '0') + mantissa;
    }
    const size_t kept = d.pointPos + fractionPlaces;
    if (d.digits.size() < kept + 1) {
        d.digits.resize(kept + 1, '0');
    }
    const bool roundUp = d.digits[kept] >= '5';
    d.digits.resize(kept);
    if (roundUp) {
        size_t i = kept;
        while (i > 0 && d.digits[i - 1] == '9') {
            d.digits[--i] = '0';
        }
        if (i == 0) {
            d.digits.insert(d.digits.begin(), '1');
            ++d.pointPos;
        } else {
            ++d.digits[i - 1];
        }
    }
    return d;
}

std::string generalNumber(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

} // namespace

std::string Format(double value, std::string_view pattern) {
    if (std::isnan(value)) {
        return "NaN";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-Infinity" : "Infinity";
    }
    if (pattern.empty()) {
        return generalNumber(value);
    }
    if (equalsIgnoringCase(pattern, "Fixed")) {
        pattern = "0.00";
    }

    const std::vector<Token> tokens = tokenize(pattern);
    const auto pointIt = std::find_if(tokens.begin(), tokens.end(),
                                      [](const Token& t) { return t.kind == Token::Point; });
    const size_t pointAt = static_cast<size_t>(pointIt - tokens.begin());

    // The integer places, and what the commas among them ask for.
    std::vector<size_t> integerPlaces;
    for (size_t i = 0; i < pointAt; ++i) {
        if (isDigitPlace(tokens[i])) {
            integerPlaces.push_back(i);
        }
    }
    bool grouping = false;
    int powerOfTen = 0;
    if (!integerPlaces.empty()) {
        for (size_t i = integerPlaces.front() + 1; i < integerPlaces.back(); ++i) {
            grouping = grouping || tokens[i].kind == Token::Comma;
        }
        for (size_t i = integerPlaces.back() + 1; i < pointAt && tokens[i].kind == Token::Comma;
             ++i) {
            powerOfTen -= 3;
        }
    }
    size_t fractionPlaces = 0;
    size_t lastFractionZero = 0; // 1-based; 0 when the fraction has no "0" place
    for (size_t i = pointAt; i < tokens.size(); ++i) {
        if (isDigitPlace(tokens[i])) {
            ++fractionPlaces;
            if (tokens[i].kind == Token::Zero) {
                lastFractionZero = fractionPlaces;
            }
        }
    }
    for (const Token& t : tokens) {
        if (t.kind == Token::Percent) {
            powerOfTen += 2;
        }
    }

    const Decimal d = roundedDecimal(std::fabs(value), powerOfTen, fractionPlaces);
    const bool roundsToZero =
        std::all_of(d.digits.begin(), d.digits.end(), [](char c) { return c == '0'; });

    // Integer digits without leading zeros, then padded to what the first "0" place demands.
    std::string integer = d.digits.substr(0, d.pointPos);
    integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size()));
    const auto firstZero = std::find_if(integerPlaces.begin(), integerPlaces.end(),
                                        [&](size_t i) { return tokens[i].kind == Token::Zero; });
    const size_t minimumDigits = static_cast<size_t>(integerPlaces.end() - firstZero);
    if (integer.size() < minimumDigits) {
        integer.insert(0, minimumDigits - integer.size(), '0');
    }
    const std::string fraction = d.digits.substr(d.pointPos, fractionPlaces);
    const size_t lastSignificant = fraction.find_last_not_of('0') == std::string::npos
                                       ? 0
                                       : fraction.find_last_not_of('0') + 1;
    const size_t fractionShown = std::max(lastSignificant, lastFractionZero);

    std::string out;
    if (value < 0 && !roundsToZero) {
        out.push_back('-');
    }
    size_t nextDigit = 0; // into integer
    auto writeIntegerDigits = [&](size_t count) {
        for (size_t k = 0; k < count; ++k, ++nextDigit) {
            out.push_back(integer[nextDigit]);
            const size_t remaining = integer.size() - nextDigit - 1;
            if (grouping && remaining > 0 && remaining % 3 == 0) {
                out.push_back(',');
            }
        }
    };
    const size_t placeCount = integerPlaces.size();
    const size_t surplus = integer.size() > placeCount ? integer.size() - placeCount : 0;
    size_t placeIndex = 0;
    size_t fractionIndex = 0;
    for (size_t i = 0; i < tokens.size(); ++i) {
        const Token& t = tokens[i];
        if (i < pointAt && isDigitPlace(t)) {
            // Places are filled from the right; the leftmost one also takes any digits beyond them.
            const size_t firstFilled = placeCount - std::min(placeCount, integer.size());
            if (placeIndex == 0) {
                writeIntegerDigits(surplus);
            }
            if (placeIndex >= firstFilled) {
                writeIntegerDigits(1);
            }
            ++placeIndex;
            continue;
        }
        switch (t.kind) {
        case Token::Point:
            if (placeCount == 0) {
                writeIntegerDigits(integer.size()); // ".00" still shows the whole part
            }
            out.push_back('.');
            break;
        case Token::Zero:
        case Token::Hash:
            if (fractionIndex < fractionShown) {
                out.push_back(fraction[fractionIndex]);
            }
            ++fractionIndex;
            break;
        case Token::Percent:
            out.push_back('%');
            break;
        case Token::Literal:
            out += t.text;
            break;
        case Token::Comma:
            break;
        }
    }
    return out;
}

} // namespace ravelcue
