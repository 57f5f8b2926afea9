#include "TargetColourTexts.h"

#include "core/Rounding.h"

namespace ravelcue::training {

namespace {

QString whole(float value) {
    return QString::number(roundToInt(value));
}

QString hslText(const TargetColour& t) {
    return QStringLiteral("H:") + whole(t.Hthresh) + QStringLiteral(", S:") + whole(t.Sthresh) +
           QStringLiteral(", L:") + whole(t.Lthresh);
}

} // namespace

QColor targetRgb(const TargetColour& target) {
    return {target.Rthresh, target.Gthresh, target.Bthresh};
}

QString targetHslToolTip(const TargetColour& target) {
    return QStringLiteral("Target HSL Components ") + hslText(target);
}

QString targetColourMessage(const TargetColour& t) {
    return QStringLiteral("Calibrated Target Color Components R:%1, G:%2, B:%3\n")
               .arg(t.Rthresh)
               .arg(t.Gthresh)
               .arg(t.Bthresh) +
           QStringLiteral("Calibrated Target HSL Components ") + hslText(t);
}

} // namespace ravelcue::training
