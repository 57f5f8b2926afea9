#include "platform/media/LiveFrame.h"
#include "platform/media/demo/DemoMicrophone.h"
#include "platform/media/demo/DemoScene.h"
#include "platform/media/demo/DemoStamp.h"

#include <algorithm>
#include <cmath>
#include <set>

#include <QBuffer>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace ravelcue::media;

namespace {

QImage throughJpeg(const QImage& picture, int quality) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "JPG", quality);
    return QImage::fromData(bytes, "JPG");
}

// Colours as training compares them: hue, saturation and lightness.
struct Hsl {
    double h = 0, s = 0, l = 0;
};

Hsl hslOf(QRgb rgb) {
    const double r = qRed(rgb) / 255.0, g = qGreen(rgb) / 255.0, b = qBlue(rgb) / 255.0;
    const double max = std::max({r, g, b}), min = std::min({r, g, b}), delta = max - min;
    Hsl out;
    out.l = (max + min) / 2 * 100;
    if (delta == 0) {
        return out;
    }
    out.s = (out.l <= 50 ? delta / (max + min) : delta / (2 - max - min)) * 100;
    out.h = 60 * (r == max   ? (g - b) / delta
                  : g == max ? 2 + (b - r) / delta
                             : 4 + (r - g) / delta);
    out.h += out.h < 0 ? 360 : 0;
    return out;
}

// What training calls of the targets: the wrist left or right of the elbow, and the angle at the
// wrist between the elbow and the side target.
std::string verticalCall(const DemoArmPose& pose) {
    const int d = pose.lowerTarget.x() - pose.upperTarget.x();
    return d > 5 ? "left" : d < -5 ? "right" : "good";
}

std::string sideCall(const DemoArmPose& pose) {
    const QPointF a = pose.upperTarget - pose.lowerTarget, b = pose.sideTarget - pose.lowerTarget;
    const double angle =
        std::acos(QPointF::dotProduct(a, b) / std::hypot(a.x(), a.y()) / std::hypot(b.x(), b.y())) *
        180 / M_PI;
    return angle > 92 ? "back" : angle < 88 ? "forward" : "good";
}

} // namespace

TEST(DemoStamp, ReadsBackAtEverySizeAndThroughHeavyCompression) {
    for (const QSize size :
         {QSize(640, 480), QSize(1920, 1080), QSize(320, 240), QSize(176, 144)}) {
        SCOPED_TRACE(size.width());
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(QColor(90, 120, 60));
        drawDemoStampBand(picture, 0xABCDEF, 4'000'000'123u);
        const DemoStamp expected{true, 0xABCDEF, 4'000'000'123u};
        EXPECT_EQ(readDemoStamp(picture), expected);
        EXPECT_EQ(readDemoStamp(throughJpeg(picture, 15)), expected);
    }
    // A counter wider than the band keeps its low 24 bits.
    QImage picture(640, 480, QImage::Format_RGB32);
    drawDemoStampBand(picture, 0x1000005, 7);
    EXPECT_EQ(readDemoStamp(picture).frameCounter, 5u);
    // Anything else is no stamp, not a wrong one.
    picture.fill(Qt::white);
    EXPECT_FALSE(readDemoStamp(picture).valid);
    EXPECT_FALSE(readDemoStamp(QImage()).valid);
}

TEST(DemoScene, EveryCameraStampsItsFramesAndMovesWithTheClock) {
    for (int camera = 1; camera <= kDemoCameraCount; ++camera) {
        SCOPED_TRACE(camera);
        DemoScene scene(camera, QSize(640, 480));
        const QImage early = scene.render(30, 1000);
        const QImage later = scene.render(45, 1500);
        EXPECT_EQ(readDemoStamp(early), (DemoStamp{true, 30, 1000}));
        EXPECT_EQ(readDemoStamp(later), (DemoStamp{true, 45, 1500}));
        // Below the band and the caption the scene itself moves.
        EXPECT_NE(early.copy(0, 70, 640, 410), later.copy(0, 70, 640, 410));
        EXPECT_EQ(scene.render(30, 1000), early) << "the same moment renders the same picture";
    }
    EXPECT_NE(DemoScene(2, QSize(320, 240)).render(1, 0).copy(0, 60, 320, 180),
              DemoScene(3, QSize(320, 240)).render(1, 0).copy(0, 60, 320, 180));
}

// Training calibrates on the centre square of the live frame, takes every pixel within 10, 30
// and 20 of that colour's hue, saturation and lightness for a target, and searches the upper
// target first, the lower one at least 75 rows below it and within 100 columns, the side one
// further off.
TEST(DemoScene, CameraOneTrainsThroughEveryCallAndIsCalibratedOnTheCentreSquare) {
    const Hsl target = hslOf(kDemoTargetColour);
    for (const QSize size : {QSize(640, 480), QSize(1280, 720)}) {
        SCOPED_TRACE(size.width());
        DemoScene scene(1, size);
        std::set<std::string> vertical, side;
        for (std::int64_t ms = 0; ms < kDemoArmCycleMs; ms += 600) {
            SCOPED_TRACE(ms);
            const QByteArray frame = liveFrameBytes(scene.render(0, ms));
            const auto at = [&](int x, int y) {
                const char* bgr = frame.constData() + (479 - y) * kLiveFrameStride + x * 3;
                return hslOf(qRgb(uchar(bgr[2]), uchar(bgr[1]), uchar(bgr[0])));
            };
            for (int y = 202; y <= 208; ++y) {
                for (int x = 302; x <= 308; ++x) {
                    const Hsl p = at(x, y);
                    ASSERT_LE(std::abs(p.h - target.h) + std::abs(p.s - target.s) +
                                  std::abs(p.l - target.l),
                              1.0)
                        << x << "," << y;
                }
            }
            // Every pixel of target colour is on one of the targets drawn, and each is seen.
            const DemoArmPose pose = demoArmPose(ms);
            const QPoint targets[] = {pose.upperTarget, pose.lowerTarget, pose.sideTarget};
            int seen[3] = {};
            int stray = 0;
            for (int y = 50; y <= 430; ++y) {
                for (int x = 50; x <= 590; ++x) {
                    const Hsl p = at(x, y);
                    if (std::abs(p.h - target.h) > 10 || std::abs(p.s - target.s) > 30 ||
                        std::abs(p.l - target.l) > 20) {
                        continue;
                    }
                    const QPoint* on = std::find_if(targets, targets + 3, [&](QPoint t) {
                        return std::hypot(x - t.x(), y - t.y()) <= kDemoTargetRadius + 2;
                    });
                    ++(on == targets + 3 ? stray : seen[on - targets]);
                }
            }
            EXPECT_EQ(stray, 0);
            EXPECT_TRUE(seen[0] > 0 && seen[1] > 0 && seen[2] > 0);
            EXPECT_GE(pose.lowerTarget.y() - pose.upperTarget.y(), 75);
            EXPECT_LE(std::abs(pose.lowerTarget.x() - pose.upperTarget.x()),
                      100 - kDemoTargetRadius);
            EXPECT_GT(std::abs(pose.sideTarget.x() - pose.lowerTarget.x()),
                      100 + kDemoTargetRadius);
            vertical.insert(verticalCall(pose));
            side.insert(sideCall(pose));
        }
        EXPECT_EQ(vertical, (std::set<std::string>{"left", "good", "right"}));
        EXPECT_EQ(side, (std::set<std::string>{"back", "good", "forward"}));
    }
}

TEST(LiveFrame, HoldsTheDemoPictureBottomRowFirstInBlueGreenRed) {
    const QImage picture = DemoScene(1, QSize(640, 480)).render(77, 4321);
    const QByteArray bytes = liveFrameBytes(picture);
    ASSERT_EQ(bytes.size(), 640 * 480 * 3);
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const unsigned char* at = data + (479 - y) * 1920 + x * 3;
            ASSERT_EQ(QColor(at[2], at[1], at[0]).rgb(), pixel) << x << "," << y;
        }
    }
    // Other sizes are stretched to 640x480: corners stay corners.
    QImage wide(1280, 720, QImage::Format_RGB32);
    wide.fill(Qt::black);
    QPainter(&wide).fillRect(0, 0, 2, 2, Qt::red);
    const QByteArray scaled = liveFrameBytes(wide);
    ASSERT_EQ(scaled.size(), 640 * 480 * 3);
    EXPECT_GT(static_cast<unsigned char>(scaled[479 * 1920 + 2]), 200); // red, top left
    EXPECT_TRUE(liveFrameBytes(QImage()).isEmpty());
}

TEST(DemoMicrophone, BreaksFollowTheirScheduleAndSuitThePeakRules) {
    // The schedule: repeatable, the first break early, the next ones a few seconds apart.
    for (std::uint64_t seed : {1ULL, 42ULL, 0xFEEDULL}) {
        double previous = 0;
        for (int n = 0; n < 6; ++n) {
            const DemoBreak b = demoBreak(seed, n);
            EXPECT_EQ(b.startSeconds, demoBreak(seed, n).startSeconds);
            EXPECT_GE(b.speedMph, 15.0);
            EXPECT_LE(b.speedMph, 30.0);
            EXPECT_GE(b.startSeconds - previous, n == 0 ? 1.0 : 4.0);
            EXPECT_LE(b.startSeconds - previous, n == 0 ? 2.0 : 6.0);
            previous = b.startSeconds;
        }
    }
    EXPECT_NE(demoBreak(1, 0).speedMph, demoBreak(2, 0).speedMph);
    // The delay gives back the speed over 48 inches less the cue ball.
    EXPECT_NEAR(45.75 / demoBreakDelaySeconds(22.0) * 0.0568, 22.0, 1e-9);

    // The sound of the first break, left channel, as the analysis reads it.
    DemoSoundSynth synth;
    synth.setBreaks(1000, 7);
    const DemoBreak first = demoBreak(7, 0);
    const auto frames = static_cast<int>((first.startSeconds + 0.5) * 44100) + 1000;
    std::vector<std::int16_t> sound(size_t(frames) * 2);
    synth.render(0, frames, {}, sound.data());
    const auto left = [&](std::int64_t f) { return sound[size_t(f) * 2]; };
    const std::int64_t click = 1000 + std::llround(first.startSeconds * 44100);
    const std::int64_t crash = click + std::llround(demoBreakDelaySeconds(first.speedMph) * 44100);
    int loudest = 0;
    for (int f = 0; f < frames; ++f) {
        loudest = std::max<int>(loudest, left(f));
    }
    EXPECT_EQ(loudest, left(crash));
    EXPECT_GT(left(click), 0.7 * loudest);
    for (int f = 0; f < click; ++f) {
        ASSERT_LT(std::abs(left(f)), 0.02 * loudest) << "noise at " << f;
    }
    // The click has rung out well within the dead time of 5100 words.
    for (std::int64_t f = click + 200; f < crash; ++f) {
        ASSERT_LT(left(f), 0.3 * loudest) << "ringing at " << f - click;
    }
    // No breaks once the recording is over.
    synth.clearBreaks();
    synth.render(0, frames, {}, sound.data());
    EXPECT_LT(*std::max_element(sound.begin(), sound.end()), 1000);
}
