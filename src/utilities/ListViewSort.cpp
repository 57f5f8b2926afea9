#include "ListViewSort.h"

#include "SortKeys.h"

#include <QCursor>
#include <QHeaderView>
#include <QLocale>
#include <QTreeWidget>

namespace ravelcue::utilities {

namespace {

// The list's sort order, 0 ascending or 1 descending, kept on the list itself.
constexpr const char* kSortOrderProperty = "SortOrder";

// The wait cursor and frozen painting for the time of one sort.
class BusyList {
public:
    explicit BusyList(QTreeWidget& list)
        : list_(list)
        , hadCursor_(list.testAttribute(Qt::WA_SetCursor))
        , cursor_(list.cursor())
        , updating_(list.updatesEnabled()) {
        list_.setCursor(Qt::WaitCursor);
        list_.setUpdatesEnabled(false);
    }
    ~BusyList() {
        list_.setUpdatesEnabled(updating_);
        if (hadCursor_) {
            list_.setCursor(cursor_);
        } else {
            list_.unsetCursor();
        }
    }
    BusyList(const BusyList&) = delete;
    BusyList& operator=(const BusyList&) = delete;

private:
    QTreeWidget& list_;
    bool hadCursor_;
    QCursor cursor_;
    bool updating_;
};

} // namespace

bool ListRow::operator<(const QTreeWidgetItem& other) const {
    const int column = treeWidget() != nullptr ? treeWidget()->sortColumn() : 0;
    return QString::compare(text(column), other.text(column), Qt::CaseInsensitive) < 0;
}

void SortListView(QTreeWidget& list, int column) {
    if (column < 0 || column >= list.columnCount()) {
        return;
    }
    const SortKind kind = sortKindOfTag(list.headerItem()->data(column, kTagRole).toString());
    if (kind == SortKind::None) {
        return;
    }
    const BusyList busy(list);
    const QLocale locale;
    const int rows = list.topLevelItemCount();
    const bool keyed = kind != SortKind::String;
    if (keyed) {
        for (int i = 0; i < rows; ++i) {
            QTreeWidgetItem* row = list.topLevelItem(i);
            const QString text = row->text(column);
            row->setData(column, kTagRole, parkText(text, row->data(column, kTagRole).toString()));
            row->setText(column, sortKey(kind, text, locale));
        }
    }
    const int order = (list.property(kSortOrderProperty).toInt() + 1) % 2;
    list.setProperty(kSortOrderProperty, order);
    const Qt::SortOrder qtOrder = order == 0 ? Qt::AscendingOrder : Qt::DescendingOrder;
    // Sets the header's indicator too, which is the column the rows compare by.
    list.sortItems(column, qtOrder);
    list.header()->setSortIndicatorShown(true);
    if (keyed) {
        for (int i = 0; i < rows; ++i) {
            QTreeWidgetItem* row = list.topLevelItem(i);
            const auto [text, tag] = unparkText(row->data(column, kTagRole).toString());
            row->setText(column, text);
            row->setData(column, kTagRole, tag);
        }
    }
}

} // namespace ravelcue::utilities
