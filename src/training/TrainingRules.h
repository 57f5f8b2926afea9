#pragma once

#include "TargetSearch.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ravelcue::training {

// lngTrainingType: the kind of run chosen at its start.
inline constexpr int kVerticalTraining = 2;      // seen from the butt end: wrist under elbow
inline constexpr int kPerpendicularTraining = 3; // seen from the side: a right angle at the wrist

// Pi as the program has always worked it out, 4 x arctangent(1), for turning the angle at the
// second target into degrees.
inline const double kPiValue = 4.0 * std::atan(1.0);

// The entries of cboAlarmType by index.
enum class AlarmType { Voice = 0, BeepOnly = 1, NoSound = 2 };

enum class AlarmSound { None, Left, Right, Good, Back, Forward, DoubleBeep };

// Colours of lblAlarm, red in the low byte.
inline constexpr std::int32_t kAlarmRed = 255;
inline constexpr std::int32_t kAlarmDarkGreen = 32768;

// What one tick tells the player: the text of lblAlarm in its colour and the sound. An empty text
// says nothing and sounds nothing.
struct Alarm {
    std::string text;
    std::int32_t colour = kAlarmRed;
    AlarmSound sound = AlarmSound::None;
    bool operator==(const Alarm&) const = default;
};

// The spoken command's file in the folder Sounds, or null for a sound that is no file.
const char* SoundFileName(AlarmSound sound);

// Vertical training: d is the second target's column less the first's. The voice says nothing at
// exactly 5 pixels either way, where the other two types already call it good.
Alarm VerticalRule(int d, AlarmType type);
// Perpendicular training: a is the angle at the second target in degrees. Exactly 88 or 92 says
// nothing in any type.
Alarm PerpendicularRule(double a, AlarmType type);
// The angle at the second target between the legs to the first and the third, 0 to 180 degrees.
double PerpendicularAngle(TargetPoint first, TargetPoint second, TargetPoint third, double piValue);

// A shape drawn on the camera's picture: its number as the drawing tools count them (0 line,
// 2 horizontal line, 3 rectangle, 4 ellipse) and its two points.
struct Mark {
    int shape = 0;
    float x1 = 0.0f;
    float y1 = 0.0f;
    float x2 = 0.0f;
    float y2 = 0.0f;
    bool operator==(const Mark&) const = default;
};

// Everything one tick of a run finds and says: the targets found, the shapes to draw in their
// order, and the alarm, which is empty unless every target was found.
struct TickOutcome {
    std::optional<TargetPoint> first;
    std::optional<TargetPoint> second;
    std::optional<TargetPoint> third;
    std::vector<Mark> marks;
    Alarm alarm;
};

TickOutcome TrainingTick(const LiveFrameView& frame, const TargetColour& target, int trainingType,
                         AlarmType alarmType, double piValue);

} // namespace ravelcue::training
