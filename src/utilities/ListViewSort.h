#pragma once

#include <QTreeWidgetItem>

class QTreeWidget;

namespace ravelcue::utilities {

// Where a list keeps the tag of a column (on its header item) and of a cell.
inline constexpr int kTagRole = Qt::UserRole;

// A row of a list that SortListView sorts: cells compare as text, without regard to case.
class ListRow : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& other) const override;
};

// Sorts the list by a column (from 0), by the kind its tag names: "DATE" and "NUMBER" columns
// sort by keys that stand in the cells only for the time of the sort, "STRING" ones by their text;
// a column with any other tag is left alone. The order belongs to the list and turns over at every
// sort, whichever column is clicked; a fresh list sorts descending first. The list shows the wait
// cursor and paints nothing while the keys stand in its cells. Cell tags survive.
void SortListView(QTreeWidget& list, int column);

} // namespace ravelcue::utilities
