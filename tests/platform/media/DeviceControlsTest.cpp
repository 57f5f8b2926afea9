// A camera's own settings: the V4L2 walk over the controls of a typical UVC webcam, from its
// recorded replies, and the demo cameras' brightness and contrast.

#include "platform/media/demo/DemoCameraSource.h"
#include "platform/media/ffmpeg/V4l2Controls.h"

#include <map>

#include <gtest/gtest.h>

#ifdef __linux__
#include <cstring>
#include <linux/videodev2.h>
#endif

namespace ravelcue::media {
namespace {

#ifdef __linux__

// The user controls a UVC webcam reports, in its order, with the values it holds.
struct RecordedControls {
    struct Control {
        std::uint32_t id;
        std::uint32_t type;
        const char* name;
        int minimum, maximum, step, defaultValue, value;
        std::uint32_t flags = 0;
        std::map<int, const char*> menu{};
    };
    std::vector<Control> controls{
        {V4L2_CID_USER_CLASS, V4L2_CTRL_TYPE_CTRL_CLASS, "User Controls", 0, 0, 0, 0, 0},
        {V4L2_CID_BRIGHTNESS, V4L2_CTRL_TYPE_INTEGER, "Brightness", -64, 64, 1, 0, 10},
        {V4L2_CID_CONTRAST, V4L2_CTRL_TYPE_INTEGER, "Contrast", 0, 95, 1, 32, 32},
        {V4L2_CID_AUTO_WHITE_BALANCE, V4L2_CTRL_TYPE_BOOLEAN, "White Balance, Automatic", 0, 1, 1,
         1, 1},
        {V4L2_CID_POWER_LINE_FREQUENCY,
         V4L2_CTRL_TYPE_MENU,
         "Power Line Frequency",
         0,
         2,
         1,
         1,
         2,
         0,
         {{0, "Disabled"}, {1, "50 Hz"}, {2, "60 Hz"}}},
        {V4L2_CID_WHITE_BALANCE_TEMPERATURE, V4L2_CTRL_TYPE_INTEGER, "White Balance Temperature",
         2800, 6500, 10, 4600, 4600, V4L2_CTRL_FLAG_INACTIVE},
        {V4L2_CID_EXPOSURE_AUTO,
         V4L2_CTRL_TYPE_MENU,
         "Auto Exposure",
         0,
         3,
         1,
         3,
         3,
         0,
         {{1, "Manual Mode"}, {3, "Aperture Priority Mode"}}},
        {V4L2_CID_EXPOSURE_ABSOLUTE, V4L2_CTRL_TYPE_INTEGER, "Exposure Time, Absolute", 3, 2047, 1,
         250, 250, V4L2_CTRL_FLAG_INACTIVE},
        {V4L2_CID_PAN_ABSOLUTE, V4L2_CTRL_TYPE_INTEGER, "Pan, Absolute", -36000, 36000, 3600, 0, 0,
         V4L2_CTRL_FLAG_DISABLED},
    };
    std::vector<std::pair<std::uint32_t, int>> sets;

    const Control* find(std::uint32_t id) const {
        for (const Control& c : controls) {
            if (c.id == id) {
                return &c;
            }
        }
        return nullptr;
    }

    int answer(unsigned long request, void* argument) {
        if (request == VIDIOC_QUERYCTRL) {
            auto* q = static_cast<v4l2_queryctrl*>(argument);
            const Control* c = nullptr;
            if ((q->id & V4L2_CTRL_FLAG_NEXT_CTRL) != 0) {
                const std::uint32_t after = q->id & ~V4L2_CTRL_FLAG_NEXT_CTRL;
                for (const Control& candidate : controls) {
                    if (candidate.id > after && (c == nullptr || candidate.id < c->id)) {
                        c = &candidate;
                    }
                }
            } else {
                c = find(q->id);
            }
            if (c == nullptr) {
                return -1;
            }
            *q = {};
            q->id = c->id;
            q->type = c->type;
            std::strncpy(reinterpret_cast<char*>(q->name), c->name, sizeof q->name - 1);
            q->minimum = c->minimum;
            q->maximum = c->maximum;
            q->step = c->step;
            q->default_value = c->defaultValue;
            q->flags = c->flags;
            return 0;
        }
        if (request == VIDIOC_QUERYMENU) {
            auto* m = static_cast<v4l2_querymenu*>(argument);
            const Control* c = find(m->id);
            if (c == nullptr || c->menu.count(int(m->index)) == 0) {
                return -1;
            }
            std::strncpy(reinterpret_cast<char*>(m->name), c->menu.at(int(m->index)),
                         sizeof m->name - 1);
            return 0;
        }
        if (request == VIDIOC_G_CTRL) {
            auto* v = static_cast<v4l2_control*>(argument);
            const Control* c = find(v->id);
            if (c == nullptr) {
                return -1;
            }
            v->value = c->value;
            return 0;
        }
        if (request == VIDIOC_S_CTRL) {
            const auto* v = static_cast<v4l2_control*>(argument);
            sets.emplace_back(v->id, v->value);
            return find(v->id) != nullptr ? 0 : -1;
        }
        return -1;
    }
    ffmpeg::DeviceIoctl ioctl() {
        return [this](unsigned long request, void* argument) { return answer(request, argument); };
    }
};

TEST(V4l2Controls, ReadsTheUserControlsOfAUvcWebcam) {
    RecordedControls camera;
    const std::vector<DeviceControl> controls = ffmpeg::enumerateV4l2Controls(camera.ioctl());
    using Kind = DeviceControl::Kind;
    struct Row {
        const char* name;
        Kind kind;
        int minimum, maximum, defaultValue, value;
        bool inactive;
        size_t menuEntries;
    };
    // The class heading and the disabled pan control are left out.
    const std::vector<Row> expected{
        {"Brightness", Kind::Integer, -64, 64, 0, 10, false, 0},
        {"Contrast", Kind::Integer, 0, 95, 32, 32, false, 0},
        {"White Balance, Automatic", Kind::Boolean, 0, 1, 1, 1, false, 0},
        {"Power Line Frequency", Kind::Menu, 0, 2, 1, 2, false, 3},
        {"White Balance Temperature", Kind::Integer, 2800, 6500, 4600, 4600, true, 0},
        {"Auto Exposure", Kind::Menu, 0, 3, 3, 3, false, 2},
        {"Exposure Time, Absolute", Kind::Integer, 3, 2047, 250, 250, true, 0},
    };
    ASSERT_EQ(controls.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        const Row& e = expected[i];
        const DeviceControl& c = controls[i];
        EXPECT_EQ(c.name, e.name);
        EXPECT_EQ(c.kind, e.kind) << e.name;
        EXPECT_EQ(c.minimum, e.minimum) << e.name;
        EXPECT_EQ(c.maximum, e.maximum) << e.name;
        EXPECT_EQ(c.defaultValue, e.defaultValue) << e.name;
        EXPECT_EQ(c.value, e.value) << e.name;
        EXPECT_EQ(c.inactive, e.inactive) << e.name;
        EXPECT_EQ(c.menu.size(), e.menuEntries) << e.name;
    }
    // A menu with a hole keeps the driver's own values.
    EXPECT_EQ(controls[5].menu.back(), std::make_pair(3, QStringLiteral("Aperture Priority Mode")));

    EXPECT_TRUE(ffmpeg::setV4l2Control(camera.ioctl(), V4L2_CID_BRIGHTNESS, -20));
    EXPECT_FALSE(ffmpeg::setV4l2Control(camera.ioctl(), 0x12345678, 1));
    EXPECT_EQ(camera.sets.front(), std::make_pair(std::uint32_t{V4L2_CID_BRIGHTNESS}, -20));
}

#endif

TEST(DemoCameraControls, BrightnessAndContrastChangeThePictureBelowTheStampBand) {
    QImage grey(8, 4, QImage::Format_RGB32);
    grey.fill(QColor(100, 128, 200));
    struct Case {
        int brightness, contrast;
        QColor below;
    };
    for (const Case& c : {Case{0, 100, QColor(100, 128, 200)}, Case{50, 100, QColor(150, 178, 250)},
                          Case{0, 200, QColor(72, 128, 255)}, Case{-100, 50, QColor(14, 28, 64)}}) {
        QImage picture = grey.copy();
        adjustDemoPicture(picture, 2, c.brightness, c.contrast);
        EXPECT_EQ(picture.pixelColor(3, 1), QColor(100, 128, 200)) << "the band stays";
        EXPECT_EQ(picture.pixelColor(3, 3), c.below) << c.brightness << " " << c.contrast;
    }

    DemoCameraPlug plug;
    EXPECT_TRUE(setDemoCameraControl(plug, demoCameraControls(plug)[0].id, 40));
    EXPECT_FALSE(setDemoCameraControl(plug, demoCameraControls(plug)[1].id, 201));
    EXPECT_EQ(plug.brightness.load(), 40);
    EXPECT_EQ(demoCameraControls(plug)[0].value, 40);
    EXPECT_EQ(plug.contrast.load(), 100);
}

} // namespace
} // namespace ravelcue::media
