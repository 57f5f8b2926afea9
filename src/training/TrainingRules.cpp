#include "TrainingRules.h"

#include "TargetMatcher.h"
#include "core/Geometry.h"

#include <cmath>

namespace ravelcue::training {

namespace {

constexpr int kVerticalTolerance = 5;
constexpr double kRightAngle = 90.0;
constexpr double kAngleTolerance = 2.0;
constexpr int kRingRadius = 5;
constexpr int kShapeLine = 0;
constexpr int kShapeHline = 2;
constexpr int kShapeRectangle = 3;
constexpr int kShapeEllipse = 4;

Alarm red(const char* text, AlarmSound sound) {
    return {text, kAlarmRed, sound};
}

Alarm good(AlarmSound sound) {
    return {"GOOD!!!", kAlarmDarkGreen, sound};
}

Mark ring(TargetPoint at) {
    return {kShapeEllipse, static_cast<float>(at.x - kRingRadius),
            static_cast<float>(at.y + kRingRadius), static_cast<float>(at.x + kRingRadius),
            static_cast<float>(at.y - kRingRadius)};
}

Mark line(TargetPoint from, TargetPoint to) {
    return {kShapeLine, static_cast<float>(from.x), static_cast<float>(from.y),
            static_cast<float>(to.x), static_cast<float>(to.y)};
}

} // namespace

const char* SoundFileName(AlarmSound sound) {
    switch (sound) {
    case AlarmSound::Left:
        return "left.wav";
    case AlarmSound::Right:
        return "right.wav";
    case AlarmSound::Good:
        return "good.wav";
    case AlarmSound::Back:
        return "back.wav";
    case AlarmSound::Forward:
        return "forward.wav";
    case AlarmSound::None:
    case AlarmSound::DoubleBeep:
        break;
    }
    return nullptr;
}

Alarm VerticalRule(int d, AlarmType type) {
    const int tolerance = kVerticalTolerance;
    if (type == AlarmType::Voice) {
        if (d > tolerance) {
            return red("Move Hand Left", AlarmSound::Left);
        }
        if (d < -tolerance) {
            return red("Move Hand Right", AlarmSound::Right);
        }
        if (d > -tolerance && d < tolerance) {
            return good(AlarmSound::Good);
        }
        return {};
    }
    if (d > tolerance) {
        return red("Move Hand Left", AlarmSound::None);
    }
    if (d < -tolerance) {
        return red("Move Hand Right", AlarmSound::None);
    }
    return good(type == AlarmType::BeepOnly ? AlarmSound::DoubleBeep : AlarmSound::None);
}

Alarm PerpendicularRule(double a, AlarmType type) {
    if (type == AlarmType::Voice) {
        const double off = a - kRightAngle;
        if (off > kAngleTolerance) {
            return red("Move Hand Back", AlarmSound::Back);
        }
        if (off < -kAngleTolerance) {
            return red("Move Hand Forward", AlarmSound::Forward);
        }
        if (off > -kAngleTolerance && off < kAngleTolerance) {
            return good(AlarmSound::Good);
        }
        return {};
    }
    const double high = kRightAngle + kAngleTolerance;
    const double low = kRightAngle - kAngleTolerance;
    if (a > high) {
        return red("Move Hand Back", AlarmSound::None);
    }
    if (a < low) {
        return red("Move Hand Forward", AlarmSound::None);
    }
    if (a > low && a < high) {
        return good(type == AlarmType::BeepOnly ? AlarmSound::DoubleBeep : AlarmSound::None);
    }
    return {};
}

double PerpendicularAngle(TargetPoint first, TargetPoint second, TargetPoint third,
                          double piValue) {
    const float radians = geometry::GetAngle(
        static_cast<float>(first.x), static_cast<float>(first.y), static_cast<float>(second.x),
        static_cast<float>(second.y), static_cast<float>(third.x), static_cast<float>(third.y));
    return static_cast<double>(std::fabs(radians)) / piValue * 180.0;
}

TickOutcome TrainingTick(const LiveFrameView& frame, const TargetColour& target, int trainingType,
                         AlarmType alarmType, double piValue) {
    TickOutcome tick;
    tick.marks.push_back({kShapeRectangle, kRegionLeft, kRegionTop, kRegionRight, kRegionBottom});
    TargetMatcher matcher(target);
    tick.first = FindFirstTarget(frame, matcher);
    if (!tick.first) {
        return tick;
    }
    const TargetPoint first = *tick.first;
    tick.marks.push_back(ring(first));
    tick.second = FindSecondTarget(frame, matcher, first);
    if (!tick.second) {
        return tick;
    }
    const TargetPoint second = *tick.second;
    tick.marks.push_back(ring(second));
    tick.marks.push_back(line(first, second));
    if (trainingType == kVerticalTraining) {
        tick.marks.push_back({kShapeHline, static_cast<float>(second.x - kSecondTargetReach),
                              static_cast<float>(second.y),
                              static_cast<float>(second.x + kSecondTargetReach),
                              static_cast<float>(second.y)});
        tick.alarm = VerticalRule(second.x - first.x, alarmType);
    } else if (trainingType == kPerpendicularTraining) {
        tick.third = FindThirdTarget(frame, matcher, second);
        if (!tick.third) {
            return tick;
        }
        tick.marks.push_back(ring(*tick.third));
        tick.marks.push_back(line(second, *tick.third));
        tick.alarm =
            PerpendicularRule(PerpendicularAngle(first, second, *tick.third, piValue), alarmType);
    }
    return tick;
}

} // namespace ravelcue::training
