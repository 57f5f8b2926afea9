#include "ListSelection.h"

#include <QComboBox>
#include <QListWidget>
#include <QSignalBlocker>

namespace ravelcue::ui {

void SelectListEntry(QWidget* control, int index) {
    if (auto* combo = qobject_cast<QComboBox*>(control)) {
        const QSignalBlocker quiet(combo);
        combo->setCurrentIndex(index);
    } else if (auto* list = qobject_cast<QListWidget*>(control)) {
        const QSignalBlocker quiet(list);
        list->setCurrentRow(index);
    }
}

} // namespace ravelcue::ui
