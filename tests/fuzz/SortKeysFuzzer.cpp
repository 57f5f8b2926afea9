// The keys Delete Files sorts its Date and Number columns by, and the dates it reads, in a few
// locales of different date, time and number forms.
#include "FuzzInput.h"
#include "utilities/SortKeys.h"

#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>

#include <QLocale>

using namespace ravelcue::utilities;
using ravelcue::fuzz::check;

namespace {

QLocale pickLocale(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0:
        return QLocale::c();
    case 1:
        return QLocale(QLocale::English, QLocale::UnitedStates);
    case 2:
        return QLocale(QLocale::German, QLocale::Germany);
    case 3:
        return QLocale(QLocale::French, QLocale::France);
    case 4:
        return QLocale(QLocale::Arabic, QLocale::Egypt);
    default:
        return QLocale(QLocale::Japanese, QLocale::Japan);
    }
}

QString consumeText(FuzzedDataProvider& input, std::size_t most) {
    const std::string bytes = input.ConsumeRandomLengthString(most);
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const QLocale locale = pickLocale(input);
    const QString tag = consumeText(input, 12);
    const QString first = consumeText(input, 80);
    const QString second = consumeText(input, 80);

    const SortKind kind = sortKindOfTag(tag);
    sortKey(kind, first, locale);
    check(InvertDigits(InvertDigits(first)).size() == first.size(),
          "inverting digits keeps the length");

    // Keys of numbers below 10^30 all have one length, so that text order is number order.
    bool isNumber = false;
    double value = locale.toDouble(first.trimmed(), &isNumber);
    if (!isNumber) {
        value = QLocale::c().toDouble(first.trimmed(), &isNumber);
    }
    const QString key = numberSortKey(first, locale);
    check(key.isEmpty() == !(isNumber && std::isfinite(value)), "every number has a key");
    if (!key.isEmpty() && std::fabs(value) < 1e30) {
        check(key.size() == (value < 0 ? 62 : 61), "a number's key has thirty places each side");
    }

    // A date shown as the list shows it reads back as the same second.
    if (const std::optional<QDateTime> when = readDate(first, locale)) {
        const int year = when->date().year();
        if (year >= 1000 && year <= 9999) {
            const std::optional<QDateTime> again = readDate(dateTimeText(*when, locale), locale);
            check(again.has_value(), "a date the list shows can be read back");
        }
        check(!dateSortKey(first, locale).isEmpty(), "a date has a key");
    }

    // A cell's text parked in its tag comes back whole.
    if (!first.contains(QChar(u'\0'))) {
        const auto [text, oldTag] = unparkText(parkText(first, second));
        check(text == first && oldTag == second, "a parked text comes back with its tag");
    }
    return 0;
}
