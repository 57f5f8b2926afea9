#include "training/TrainingRules.h"

#include "TestFrames.h"

#include <cmath>

#include <gtest/gtest.h>

namespace ravelcue::training::test {
namespace {

constexpr auto Voice = AlarmType::Voice;
constexpr auto Beep = AlarmType::BeepOnly;
constexpr auto Silent = AlarmType::NoSound;

const Alarm kNothing{};
const Alarm kLeft{"Move Hand Left", kAlarmRed, AlarmSound::Left};
const Alarm kRight{"Move Hand Right", kAlarmRed, AlarmSound::Right};
const Alarm kBack{"Move Hand Back", kAlarmRed, AlarmSound::Back};
const Alarm kForward{"Move Hand Forward", kAlarmRed, AlarmSound::Forward};
const Alarm kGood{"GOOD!!!", kAlarmDarkGreen, AlarmSound::Good};
const Alarm kGoodBeeps{"GOOD!!!", kAlarmDarkGreen, AlarmSound::DoubleBeep};

Alarm quiet(Alarm alarm) {
    alarm.sound = AlarmSound::None;
    return alarm;
}

struct VerticalCase {
    int d;
    AlarmType type;
    Alarm alarm;
};

class VerticalRuleTest : public testing::TestWithParam<VerticalCase> {};

TEST_P(VerticalRuleTest, CallsTheWristToTheElbowsColumn) {
    const VerticalCase& c = GetParam();
    EXPECT_EQ(VerticalRule(c.d, c.type), c.alarm)
        << "d " << c.d << ", alarm type " << static_cast<int>(c.type);
}

INSTANTIATE_TEST_SUITE_P(
    EveryRow, VerticalRuleTest,
    testing::Values(VerticalCase{10, Voice, kLeft}, VerticalCase{6, Voice, kLeft},
                    VerticalCase{5, Voice, kNothing}, VerticalCase{4, Voice, kGood},
                    VerticalCase{0, Voice, kGood}, VerticalCase{-4, Voice, kGood},
                    VerticalCase{-5, Voice, kNothing}, VerticalCase{-6, Voice, kRight},
                    VerticalCase{6, Beep, quiet(kLeft)}, VerticalCase{5, Beep, kGoodBeeps},
                    VerticalCase{-5, Beep, kGoodBeeps}, VerticalCase{-6, Beep, quiet(kRight)},
                    VerticalCase{6, Silent, quiet(kLeft)}, VerticalCase{5, Silent, quiet(kGood)},
                    VerticalCase{-5, Silent, quiet(kGood)},
                    VerticalCase{-6, Silent, quiet(kRight)}));

struct AngleCase {
    double a;
    AlarmType type;
    Alarm alarm;
};

class PerpendicularRuleTest : public testing::TestWithParam<AngleCase> {};

TEST_P(PerpendicularRuleTest, CallsTheAngleAtTheWrist) {
    const AngleCase& c = GetParam();
    EXPECT_EQ(PerpendicularRule(c.a, c.type), c.alarm)
        << c.a << " degrees, alarm type " << static_cast<int>(c.type);
}

INSTANTIATE_TEST_SUITE_P(
    EveryRow, PerpendicularRuleTest,
    testing::Values(AngleCase{96.3, Voice, kBack}, AngleCase{92.01, Voice, kBack},
                    AngleCase{92, Voice, kNothing}, AngleCase{91.99, Voice, kGood},
                    AngleCase{88.01, Voice, kGood}, AngleCase{88, Voice, kNothing},
                    AngleCase{87.99, Voice, kForward}, AngleCase{92.01, Beep, quiet(kBack)},
                    AngleCase{92, Beep, kNothing}, AngleCase{90, Beep, kGoodBeeps},
                    AngleCase{88, Beep, kNothing}, AngleCase{87.99, Beep, quiet(kForward)},
                    AngleCase{92.01, Silent, quiet(kBack)}, AngleCase{92, Silent, kNothing},
                    AngleCase{91.99, Silent, quiet(kGood)}, AngleCase{88, Silent, kNothing},
                    AngleCase{87.99, Silent, quiet(kForward)}));

TEST(PerpendicularAngle, IsTheUnsignedAngleAtTheSecondTarget) {
    // Legs (0, -100) and (180, 0): a right angle.
    EXPECT_NEAR(PerpendicularAngle({320, 100}, {320, 200}, {500, 200}, kPiValue), 90, 1e-4);
    const double open = PerpendicularAngle({320, 100}, {320, 200}, {500, 220}, kPiValue);
    EXPECT_NEAR(open, 96.34, 0.01);
    EXPECT_EQ(PerpendicularRule(open, Voice), kBack);
    // Mirrored to the other side the sign of the angle flips; the rule sees the same figure.
    EXPECT_NEAR(PerpendicularAngle({320, 100}, {320, 200}, {140, 220}, kPiValue), open, 1e-4);
    EXPECT_NEAR(PerpendicularAngle({320, 100}, {320, 200}, {500, 180}, kPiValue), 83.66, 0.01);
}

TEST(SoundFileName, NamesTheFiveSpokenCommands) {
    EXPECT_STREQ(SoundFileName(AlarmSound::Left), "left.wav");
    EXPECT_STREQ(SoundFileName(AlarmSound::Right), "right.wav");
    EXPECT_STREQ(SoundFileName(AlarmSound::Good), "good.wav");
    EXPECT_STREQ(SoundFileName(AlarmSound::Back), "back.wav");
    EXPECT_STREQ(SoundFileName(AlarmSound::Forward), "forward.wav");
    EXPECT_EQ(SoundFileName(AlarmSound::DoubleBeep), nullptr);
    EXPECT_EQ(SoundFileName(AlarmSound::None), nullptr);
}

const Mark kRegion{3, 50, 50, 590, 430};

Mark ringAround(int x, int y) {
    return {4, float(x - 5), float(y + 5), float(x + 5), float(y - 5)};
}

TEST(TrainingTick, DrawsWhatItFoundAndSaysNothingUntilAllTargetsAreThere) {
    const TargetColour target = targetOf(kGreenTarget);
    TestFrame frame;
    TickOutcome tick = TrainingTick(frame.view(), target, kVerticalTraining, Voice, kPiValue);
    EXPECT_EQ(tick.marks, std::vector<Mark>{kRegion});
    EXPECT_EQ(tick.alarm, kNothing);

    frame.set(320, 100, kGreenTarget);
    tick = TrainingTick(frame.view(), target, kVerticalTraining, Voice, kPiValue);
    EXPECT_EQ(tick.marks, (std::vector<Mark>{kRegion, ringAround(320, 100)}));
    EXPECT_EQ(tick.alarm, kNothing);

    frame.set(320, 200, kGreenTarget);
    tick = TrainingTick(frame.view(), target, kPerpendicularTraining, Voice, kPiValue);
    const Mark forearm{0, 320, 100, 320, 200};
    EXPECT_EQ(tick.marks,
              (std::vector<Mark>{kRegion, ringAround(320, 100), ringAround(320, 200), forearm}));
    EXPECT_EQ(tick.alarm, kNothing) << "no third target";
}

TEST(TrainingTick, VerticalRunLinesUpTheWristUnderTheElbow) {
    TestFrame frame;
    frame.set(320, 100, kGreenTarget);
    frame.set(330, 200, kGreenTarget);
    const TickOutcome tick =
        TrainingTick(frame.view(), targetOf(kGreenTarget), kVerticalTraining, Voice, kPiValue);
    EXPECT_EQ(tick.marks,
              (std::vector<Mark>{kRegion, ringAround(320, 100), ringAround(330, 200),
                                 Mark{0, 320, 100, 330, 200}, Mark{2, 230, 200, 430, 200}}));
    EXPECT_EQ(tick.alarm, kLeft) << "d = 10";
}

TEST(TrainingTick, PerpendicularRunJudgesTheAngleAtTheWrist) {
    TestFrame frame;
    frame.set(320, 100, kGreenTarget);
    frame.set(320, 200, kGreenTarget);
    frame.set(500, 220, kGreenTarget);
    const TickOutcome tick = TrainingTick(frame.view(), targetOf(kGreenTarget),
                                          kPerpendicularTraining, Silent, kPiValue);
    ASSERT_EQ(tick.third, (TargetPoint{500, 220}));
    EXPECT_EQ(tick.marks.back(), (Mark{0, 320, 200, 500, 220}));
    EXPECT_EQ(tick.marks.at(4), ringAround(500, 220));
    EXPECT_EQ(tick.alarm, quiet(kBack));
}

} // namespace
} // namespace ravelcue::training::test
