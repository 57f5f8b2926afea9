#include "utilities/SortKeys.h"

#include <algorithm>
#include <vector>

#include <QStringList>

#include <gtest/gtest.h>

namespace ravelcue::utilities {
namespace {

// The texts in the order their keys sort as text, ascending.
QStringList byKey(QStringList texts, SortKind kind, const QLocale& locale) {
    std::stable_sort(texts.begin(), texts.end(), [&](const QString& a, const QString& b) {
        return sortKey(kind, a, locale) < sortKey(kind, b, locale);
    });
    return texts;
}

TEST(SortKeys, NumberKeysSortNegativesFirstAndByMagnitude) {
    EXPECT_EQ(InvertDigits("0.25"), "9.74");
    EXPECT_EQ(InvertDigits("a-19,0"), "a 80,9");
    const QLocale c = QLocale::c();
    EXPECT_EQ(
        byKey({"3", "-1", "0.25", "-2", "10", "-10.5", "1,234.5", "999"}, SortKind::Number, c),
        (QStringList{"-10.5", "-2", "-1", "0.25", "3", "10", "999", "1,234.5"}));
    // Texts that are no number get the empty key and gather in front, unchanged in their order.
    for (const char* text : {"", "abc", "1.2.3", "12 KB", "inf"}) {
        EXPECT_EQ(numberSortKey(text, c), "") << text;
    }
    EXPECT_EQ(byKey({"5", "n/a", "-5", ""}, SortKind::Number, c),
              (QStringList{"n/a", "", "-5", "5"}));
}

TEST(SortKeys, DateKeysReadSeveralFormsAndSortByTime) {
    const QLocale c = QLocale::c();
    for (const char* text : {"2024-03-05 14:07:09", "2024-03-05T14:07:09", "3/5/2024 2:07:09 PM",
                             "03/05/2024 14:07:09", "5.3.2024 14:07:09"}) {
        EXPECT_EQ(dateSortKey(text, c), "20240305140709") << text;
    }
    for (const char* text : {"5 March 2024", "March 5, 2024", "3/5/24"}) { // 24 is 2024
        EXPECT_EQ(dateSortKey(text, c), "20240305000000") << text;
    }
    for (const char* text : {"", "yesterday", "2024-13-01", "31/31/2024", "1,500 KB"}) {
        EXPECT_EQ(dateSortKey(text, c), "") << text;
    }
    EXPECT_EQ(byKey({"5 March 2024", "2023-12-31 23:59:59", "?", "3/5/2024 9:00:00 AM"},
                    SortKind::Date, c),
              (QStringList{"?", "2023-12-31 23:59:59", "5 March 2024", "3/5/2024 9:00:00 AM"}));
}

TEST(SortKeys, TheListsOwnDateTextReadsBackInEveryLocale) {
    const QDateTime when(QDate(2031, 11, 2), QTime(7, 5, 9));
    for (const char* name : {"en_US", "de_DE", "en_GB", "fr_FR", "ja_JP", "C"}) {
        const QLocale locale(QString::fromLatin1(name));
        const QString text = dateTimeText(when, locale);
        EXPECT_TRUE(text.contains("2031"))
            << name << ": the full year is shown, " << text.toStdString();
        EXPECT_EQ(dateSortKey(text, locale), "20311102070509")
            << name << ": " << text.toStdString();
    }
}

} // namespace
} // namespace ravelcue::utilities
