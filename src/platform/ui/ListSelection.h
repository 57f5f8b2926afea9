#pragma once

class QWidget;

namespace ravelcue::ui {

// Selects entry `index` of a list box or combo box without running its handlers. Any other kind
// of control is left alone.
void SelectListEntry(QWidget* control, int index);

} // namespace ravelcue::ui
