#include "platform/media/LiveFrame.h"
#include "platform/media/demo/DemoMicrophone.h"
#include "platform/media/demo/DemoScene.h"
#include "platform/media/demo/DemoStamp.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include <QBuffer>
#include <QImage>

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

// How training sees a live frame: colours by hue, saturation and lightness, a pixel matching
// within 10, 30 and 20 of the calibrated ones, targets the first match in scan order.
struct Hsl {
    double h = 0, s = 0, l = 0;
};

Hsl hslOf(int red, int green, int blue) {
    const double r = red / 255.0, g = green / 255.0, b = blue / 255.0;
    const double max = std::max({r, g, b}), min = std::min({r, g, b});
    Hsl out;
    out.l = (max + min) / 2 * 100;
    if (max == min) {
        return out;
    }
    out.s = (out.l <= 50 ? (max - min) / (max + min) : (max - min) / (2 - max - min)) * 100;
    const double delta = max - min;
    out.h = r == max ? (g - b) / delta : g == max ? 2 + (b - r) / delta : 4 + (r - g) / delta;
    out.h *= 60;
    if (out.h < 0) {
        out.h += 360;
    }
    return out;
}

class LiveFrameView {
public:
    explicit LiveFrameView(const QByteArray& bytes)
        : bytes_(bytes) {}
    Hsl at(int x, int y) const {
        const auto* p = reinterpret_cast<const unsigned char*>(bytes_.constData()) +
                        (479 - y) * kLiveFrameStride + x * 3;
        return hslOf(p[2], p[1], p[0]);
    }

private:
    QByteArray bytes_;
};

struct TrainingView {
    std::optional<QPoint> first, second, third;
};

TrainingView searchTargets(const QByteArray& frame) {
    const LiveFrameView view(frame);
    Hsl target; // calibration: the mean over the inside of the centre square
    for (int y = 202; y <= 208; ++y) {
        for (int x = 302; x <= 308; ++x) {
            const Hsl p = view.at(x, y);
            target.h += p.h / 49;
            target.s += p.s / 49;
            target.l += p.l / 49;
        }
    }
    auto matches = [&](int x, int y) {
        const Hsl p = view.at(x, y);
        return std::abs(p.h - target.h) <= 10 && std::abs(p.s - target.s) <= 30 &&
               std::abs(p.l - target.l) <= 20;
    };
    TrainingView found;
    for (int y = 50; y <= 430 && !found.first; ++y) {
        for (int x = 50; x <= 590 && !found.first; ++x) {
            if (matches(x, y)) {
                found.first = QPoint(x, y);
            }
        }
    }
    if (!found.first) {
        return found;
    }
    for (int y = found.first->y() + 75; y <= 430 && !found.second; ++y) {
        for (int x = found.first->x() - 100; x <= found.first->x() + 100 && !found.second; ++x) {
            if (matches(x, y)) {
                found.second = QPoint(x, y);
            }
        }
    }
    if (!found.second) {
        return found;
    }
    for (int y = found.second->y(); y <= 430 && !found.third; ++y) {
        for (int x = 50; x <= 590 && !found.third; ++x) {
            if (std::abs(x - found.second->x()) > 100 && matches(x, y)) {
                found.third = QPoint(x, y);
            }
        }
    }
    return found;
}

std::string verticalCall(const TrainingView& view) {
    const int d = view.second->x() - view.first->x();
    return d > 5 ? "left" : d < -5 ? "right" : "good";
}

std::string sideCall(const TrainingView& view) {
    const QPointF a = *view.first - *view.second, b = *view.third - *view.second;
    const double angle = std::acos((a.x() * b.x() + a.y() * b.y()) / std::hypot(a.x(), a.y()) /
                                   std::hypot(b.x(), b.y())) *
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
        EXPECT_EQ(readDemoStamp(throughJpeg(picture, 15).convertToFormat(QImage::Format_RGB888)),
                  expected);
    }
    // A counter wider than the band keeps its low 24 bits.
    QImage picture(640, 480, QImage::Format_RGB32);
    drawDemoStampBand(picture, 0x1000005, 7);
    EXPECT_EQ(readDemoStamp(picture).frameCounter, 5u);
    // Anything else is no stamp, not a wrong one.
    QImage plain(640, 480, QImage::Format_RGB32);
    plain.fill(Qt::white);
    EXPECT_FALSE(readDemoStamp(plain).valid);
    EXPECT_FALSE(readDemoStamp(QImage()).valid);
}

TEST(DemoScene, EveryCameraStampsItsFramesAndMovesWithTheClock) {
    for (int camera = 1; camera <= kDemoCameraCount; ++camera) {
        SCOPED_TRACE(camera);
        DemoScene scene(camera, QSize(640, 480));
        const QImage early = scene.render(30, 1000);
        const QImage later = scene.render(45, 1500);
        EXPECT_EQ(early.size(), QSize(640, 480));
        EXPECT_EQ(readDemoStamp(early), (DemoStamp{true, 30, 1000}));
        EXPECT_EQ(readDemoStamp(later), (DemoStamp{true, 45, 1500}));
        // Below the band and the caption the scene itself moves.
        const int top = 70;
        EXPECT_NE(early.copy(0, top, 640, 480 - top), later.copy(0, top, 640, 480 - top));
        // The same moment renders the same picture.
        EXPECT_EQ(scene.render(30, 1000), early);
    }
    // Cameras differ from one another.
    EXPECT_NE(DemoScene(2, QSize(320, 240)).render(1, 0).copy(0, 60, 320, 180),
              DemoScene(3, QSize(320, 240)).render(1, 0).copy(0, 60, 320, 180));
}

TEST(DemoScene, CameraOneTrainsThroughEveryCallAndIsCalibratedOnTheCentreSquare) {
    for (const QSize size : {QSize(640, 480), QSize(1280, 720)}) {
        SCOPED_TRACE(size.width());
        DemoScene scene(1, size);
        std::set<std::string> vertical, side;
        for (std::int64_t ms = 0; ms < kDemoArmCycleMs; ms += 600) {
            const QByteArray frame = liveFrameBytes(scene.render(0, ms));
            ASSERT_EQ(frame.size(), kLiveFrameStride * kLiveFrameHeight);
            // The whole calibration square is target colour, so calibration learns it exactly.
            const LiveFrameView view(frame);
            const Hsl target =
                hslOf(qRed(kDemoTargetColour), qGreen(kDemoTargetColour), qBlue(kDemoTargetColour));
            for (int y = 202; y <= 208; ++y) {
                for (int x = 302; x <= 308; ++x) {
                    ASSERT_NEAR(view.at(x, y).h, target.h, 1.0) << x << "," << y;
                }
            }
            const TrainingView found = searchTargets(frame);
            ASSERT_TRUE(found.first && found.second && found.third) << "at " << ms << " ms";
            // The targets found are the drawn ones, not stray pixels of the same colour.
            const DemoArmPose pose = demoArmPose(ms);
            EXPECT_LE((*found.first - pose.upperTarget).manhattanLength(), kDemoTargetRadius + 2);
            EXPECT_LE((*found.second - pose.lowerTarget).manhattanLength(), kDemoTargetRadius + 2);
            EXPECT_LE((*found.third - pose.sideTarget).manhattanLength(), kDemoTargetRadius + 2);
            vertical.insert(verticalCall(found));
            side.insert(sideCall(found));
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
            ASSERT_EQ(at[0], qBlue(pixel)) << x << "," << y;
            ASSERT_EQ(at[1], qGreen(pixel)) << x << "," << y;
            ASSERT_EQ(at[2], qRed(pixel)) << x << "," << y;
        }
    }
    // Other sizes are stretched to 640x480: corners stay corners.
    QImage wide(1280, 720, QImage::Format_RGB32);
    wide.fill(Qt::black);
    wide.setPixel(0, 0, qRgb(255, 0, 0));
    wide.setPixel(1, 0, qRgb(255, 0, 0));
    wide.setPixel(0, 1, qRgb(255, 0, 0));
    wide.setPixel(1, 1, qRgb(255, 0, 0));
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
            if (n == 0) {
                EXPECT_GE(b.startSeconds, 1.0);
                EXPECT_LE(b.startSeconds, 2.0);
            } else {
                EXPECT_GE(b.startSeconds - previous, 4.0);
                EXPECT_LE(b.startSeconds - previous, 6.0);
            }
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
    const std::int64_t click = 1000 + std::llround(first.startSeconds * 44100);
    const std::int64_t crash = click + std::llround(demoBreakDelaySeconds(first.speedMph) * 44100);
    int loudest = 0;
    for (int f = 0; f < frames; ++f) {
        loudest = std::max<int>(loudest, sound[size_t(f) * 2]);
    }
    EXPECT_EQ(loudest, sound[size_t(crash) * 2]);
    EXPECT_GT(sound[size_t(click) * 2], 0.7 * loudest);
    for (int f = 0; f < click; ++f) {
        ASSERT_LT(std::abs(sound[size_t(f) * 2]), 0.02 * loudest) << "noise at " << f;
    }
    // The click has rung out well within the dead time of 5100 words.
    for (std::int64_t f = click + 200; f < crash; ++f) {
        ASSERT_LT(sound[size_t(f) * 2], 0.3 * loudest) << "ringing at " << f - click;
    }
    // No breaks once the recording is over.
    synth.clearBreaks();
    synth.render(0, frames, {}, sound.data());
    EXPECT_LT(*std::max_element(sound.begin(), sound.end()), 1000);
}
