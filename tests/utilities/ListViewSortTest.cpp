#include "utilities/ListViewSort.h"

#include <QAbstractItemModel>
#include <QHeaderView>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace ravelcue::utilities {
namespace {

// A list in a window, as in a dialog: columns tagged as given, one row per entry of texts.
struct SortedList {
    SortedList(const QStringList& tags, const std::vector<QStringList>& rows) {
        list->setColumnCount(static_cast<int>(tags.size()));
        for (int c = 0; c < tags.size(); ++c) {
            list->headerItem()->setData(c, kTagRole, tags[c]);
        }
        for (const QStringList& texts : rows) {
            auto* row = new ListRow(list);
            for (int c = 0; c < texts.size(); ++c) {
                row->setText(c, texts[c]);
            }
        }
    }
    QStringList column(int c) const {
        QStringList texts;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            texts << list->topLevelItem(i)->text(c);
        }
        return texts;
    }
    QWidget host;
    QTreeWidget* list = new QTreeWidget(&host);
};

TEST(SortListView, NumberAndDateColumnsSortByValueAndTheOrderTurnsAtEveryClick) {
    SortedList s({"STRING", "NUMBER", "date"}, {{"a", "3", "3/5/2024 9:00:00 AM"},
                                                {"b", "-1", "2024-03-04 10:00:00"},
                                                {"c", "x", "5 March 2024"},
                                                {"d", "-2", "not a date"},
                                                {"e", "0.25", "2023-12-31 23:59:59"}});
    s.list->topLevelItem(0)->setData(1, kTagRole, QStringLiteral("kept"));

    SortListView(*s.list, 1); // a fresh list sorts descending first
    EXPECT_EQ(s.column(1), (QStringList{"3", "0.25", "-1", "-2", "x"}));
    SortListView(*s.list, 1);
    EXPECT_EQ(s.column(1), (QStringList{"x", "-2", "-1", "0.25", "3"}));
    EXPECT_EQ(s.list->topLevelItem(4)->data(1, kTagRole).toString(), "kept")
        << "the old tag survives";

    // Another column goes on with the list's order: descending again after two sorts.
    SortListView(*s.list, 2);
    EXPECT_EQ(s.column(0), (QStringList{"a", "c", "b", "e", "d"}));
    EXPECT_EQ(s.column(2).last(), "not a date") << "texts come back unchanged";
    SortListView(*s.list, 2);
    EXPECT_EQ(s.column(0), (QStringList{"d", "e", "b", "c", "a"}));
    EXPECT_EQ(s.list->header()->sortIndicatorSection(), 2);
    EXPECT_EQ(s.list->header()->sortIndicatorOrder(), Qt::AscendingOrder);
}

TEST(SortListView, StringColumnsSortByTheShownTextAndOtherTagsSortNothing) {
    SortedList s({"STRING", "STRING", "Size"},
                 {{"b.avi", "9 KB", "1"}, {"A.avi", "1,234 KB", "3"}, {"C.avi", " KB", "2"}});
    SortListView(*s.list, 2);
    EXPECT_EQ(s.column(0), (QStringList{"b.avi", "A.avi", "C.avi"}))
        << "an unknown tag sorts nothing";
    SortListView(*s.list, 1);
    SortListView(*s.list, 1);
    EXPECT_EQ(s.column(1), (QStringList{" KB", "1,234 KB", "9 KB"})) << "sizes sort as text";
    SortListView(*s.list, 0);
    EXPECT_EQ(s.column(0), (QStringList{"C.avi", "b.avi", "A.avi"})) << "names ignore case";
}

TEST(SortListView, KeysAreWrittenOnlyWhileTheListIsFrozenUnderTheWaitCursor) {
    SortedList s({"NUMBER"}, {{"10"}, {"-4"}, {"7"}});
    s.list->show();
    std::vector<std::pair<bool, Qt::CursorShape>> seen;
    QObject::connect(s.list->model(), &QAbstractItemModel::dataChanged, [&] {
        seen.emplace_back(s.list->updatesEnabled(), s.list->cursor().shape());
    });
    SortListView(*s.list, 0);
    ASSERT_EQ(seen.size(), 12u) << "each cell: tag parked, key, text back, tag back";
    for (const auto& [painting, cursor] : seen) {
        EXPECT_FALSE(painting);
        EXPECT_EQ(cursor, Qt::WaitCursor);
    }
    EXPECT_TRUE(s.list->updatesEnabled());
    EXPECT_FALSE(s.list->testAttribute(Qt::WA_SetCursor)) << "the list's own cursor is back";

    s.list->setCursor(Qt::PointingHandCursor);
    SortListView(*s.list, 0);
    EXPECT_EQ(s.list->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(s.column(0), (QStringList{"-4", "7", "10"}));
}

} // namespace
} // namespace ravelcue::utilities
