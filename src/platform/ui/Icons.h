#pragma once

#include <QIcon>
#include <QString>

namespace ravelcue::ui {

// The toolbar pictures, drawn in code so they stay sharp at any scale. Keys: "Rewind",
// "StepBack", "Play", "Pause", "StepForward", "Stop", "Line", "Vline", "Hline", "Freehand",
// "Angle", "Ellipse", "Rectangle", "Text", "Color", "Erase". An unknown key gives a null icon.
QIcon toolbarIcon(const QString& key);

} // namespace ravelcue::ui
