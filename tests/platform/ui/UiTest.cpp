#include "platform/ui/Clock.h"
#include "platform/ui/ListSelection.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/SingleInstance.h"
#include "platform/ui/StatusPopup.h"
#include "support/TempFolder.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>
#include <QTimer>
#include <QUuid>
#include <QWidget>

#include <gtest/gtest.h>

namespace ravelcue::ui {
namespace {

TEST(SingleInstance, SecondStartFindsTheFirstAndTheLockIsFreeWhenItEnds) {
    test::TempFolder folder;
    const QString key =
        QStringLiteral("RavelcueTest-") + QUuid::createUuid().toString(QUuid::Id128);
    {
        SingleInstance first(key, folder.path());
        ASSERT_TRUE(first.claim());
        SingleInstance second(key, folder.path());
        EXPECT_FALSE(second.claim()) << "one running instance at a time";

        QSignalSpy raised(&first, &SingleInstance::raiseRequested);
        EXPECT_TRUE(second.askRunningToRaise());
        EXPECT_TRUE(raised.wait(5000));
        EXPECT_EQ(raised.count(), 1);
    }
    SingleInstance next(key, folder.path());
    EXPECT_TRUE(next.claim());
}

TEST(StatusPopup, StaysUntilClosedAndClosesAtTheNextTurn) {
    const Clock clock(100.0);
    StatusPopup popup(clock);
    const auto waitUntilClosed = [&] {
        QElapsedTimer waited;
        waited.start();
        while (popup.window() != nullptr && waited.elapsed() < 5000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }
        return popup.window() == nullptr;
    };
    popup.ShowPopup(QStringLiteral("Loading Ravelcue. Please standby...."), 0);
    ASSERT_NE(popup.window(), nullptr);
    EXPECT_EQ(popup.window()->windowTitle(), "Status");
    auto* text = popup.window()->findChild<QLabel*>(QStringLiteral("lblText"));
    EXPECT_EQ(text->text(), "Loading Ravelcue. Please standby....");
    QCoreApplication::processEvents();
    EXPECT_NE(popup.window(), nullptr) << "0 seconds: stays up";

    popup.ShowPopup(QString(), -1);
    EXPECT_EQ(text->text(), "") << "the label is blank for its last moment";
    EXPECT_TRUE(waitUntilClosed());

    popup.ShowPopup(QStringLiteral("again"), 2);
    ASSERT_NE(popup.window(), nullptr) << "it loads anew";
    EXPECT_TRUE(waitUntilClosed()) << "closes itself after its seconds";
}

TEST(Clock, DelayServesEventsAndZeroReturnsAtOnce) {
    const Clock fast(100.0);
    EXPECT_EQ(fast.scaled(500), 5);
    EXPECT_EQ(fast.scaled(1), 1) << "never below a millisecond";
    int served = 0;
    QTimer::singleShot(0, [&served] { ++served; });
    fast.DelaySeconds(0);
    EXPECT_EQ(served, 0) << "no turn, no events";
    fast.DelaySeconds(1);
    EXPECT_EQ(served, 1);
}

TEST(SelectListEntry, SelectsWithoutRunningHandlers) {
    QComboBox combo;
    combo.addItems({"a", "b", "c"});
    QListWidget list;
    list.addItems({"a", "b", "c"});
    QSignalSpy comboChanged(&combo, &QComboBox::currentIndexChanged);
    QSignalSpy listChanged(&list, &QListWidget::currentRowChanged);
    SelectListEntry(&combo, 2);
    SelectListEntry(&list, 1);
    QWidget other;
    SelectListEntry(&other, 1);
    EXPECT_EQ(combo.currentIndex(), 2);
    EXPECT_EQ(list.currentRow(), 1);
    EXPECT_EQ(comboChanged.count(), 0);
    EXPECT_EQ(listChanged.count(), 0);
}

TEST(Prompts, FileFiltersBecomeQtFilters) {
    EXPECT_EQ(qtNameFilters(QStringLiteral("AVI Files(*.avi)|*.avi|All Files(*.*)|*.*")),
              QStringLiteral("AVI Files (*.avi);;All Files (*)"));
    EXPECT_EQ(qtNameFilters(QStringLiteral("Videos|*.avi;*.mp4")),
              QStringLiteral("Videos (*.avi *.mp4)"));
}

} // namespace
} // namespace ravelcue::ui
