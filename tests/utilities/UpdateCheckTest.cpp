#include "utilities/UpdateCheck.h"

#include "LocalHttpServer.h"
#include "platform/ui/Clock.h"
#include "platform/ui/HelpWindow.h"
#include "platform/ui/StatusPopup.h"
#include "support/RecordingDesktop.h"
#include "support/ScriptedPrompts.h"

#include <functional>

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace ravelcue::utilities {
namespace {

// The update window on a server of the test's own; the give-up time is short so that a server
// that never answers ends the check soon.
class Updates : public ::testing::Test {
protected:
    void window(const QString& url, const QString& current = QStringLiteral("1.2.3")) {
        check = std::make_unique<UpdateCheck>(UpdateCheckOptions{url, current, 300}, prompts, popup,
                                              help, desktop);
    }
    // Runs a check to its end, however long the network takes; whileReading runs as soon as the
    // read has started. An interactive check also closes its popup, at the timer's next turn.
    void run(bool interactive, const std::function<void()>& whileReading = {}) {
        bool finished = false;
        const QMetaObject::Connection done = QObject::connect(
            check.get(), &UpdateCheck::checkFinished, [&finished] { finished = true; });
        check->CheckUpdate(interactive);
        if (whileReading) {
            whileReading();
        }
        while (!finished || (interactive && popup.window() != nullptr)) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QObject::disconnect(done);
    }
    QString popupText() const {
        return popup.window() != nullptr ? popup.window()->findChild<QLabel*>("lblText")->text()
                                         : QString();
    }

    test::ScriptedPrompts prompts;
    ui::Clock clock;
    ui::StatusPopup popup{clock};
    ui::HelpWindow help;
    test::RecordingDesktop desktop;
    std::unique_ptr<UpdateCheck> check;
};

TEST_F(Updates, ANewerVersionIsOfferedForDownloadAndAnOtherIsNot) {
    struct Case {
        const char* available;
        const char* current;
        bool newer;
    };
    // How versions compare is the logic's own (its tests); here, what the window makes of it.
    for (const Case& c : {Case{"1.10.0", "1.9.0", true}, Case{"1.2.3", "1.2.3", false}}) {
        SCOPED_TRACE(std::string(c.available) + " against " + c.current);
        test::LocalHttpServer server(QByteArray(" ") + c.available +
                                     " &&&Faster saving.\nA new grid.\n&&&more");
        window(server.downloadUrl(), c.current);
        run(true, [this] {
            EXPECT_TRUE(check->isVisible());
            EXPECT_FALSE(check->isModal());
            EXPECT_EQ(popupText(), "Checking for update....please standby");
        });
        EXPECT_EQ(server.requests(), QStringList{"/downloads/app.txt"});
        EXPECT_EQ(check->txtCurrentVersion()->text(), c.current);
        EXPECT_EQ(check->txtAvailableUpdate()->text(), c.newer ? c.available : "No new version");
        EXPECT_EQ(check->cmdDownLoad()->isEnabled(), c.newer);
        EXPECT_EQ(check->DLWhat(), c.newer ? server.downloadUrl() + "RV.zip" : "none");
        EXPECT_EQ(check->txtInformation()->document()->blockCount(), 3);
    }
    EXPECT_TRUE(prompts.shown().empty()) << "the window speaks for itself";
    QTest::mouseClick(check->findChild<QPushButton*>("cmdHelp"), Qt::LeftButton);
    EXPECT_EQ(help.source(), ui::HelpWindow::topicUrl(180));
}

TEST_F(Updates, ReadsThatFailOrFindNoAnswerSayTheConnectionFailed) {
    test::LocalHttpServer noSeparator("1.2.4 only");
    test::LocalHttpServer empty("");
    test::LocalHttpServer silent("", test::LocalHttpServer::Mode::Silent);
    const std::vector<std::pair<const char*, QString>> cases{
        {"no separator", noSeparator.downloadUrl()},
        {"empty reply", empty.downloadUrl()},
        {"no server", test::closedDownloadUrl()},
        {"never answers", silent.downloadUrl()},
        {"no address", QString()}};
    for (const auto& [what, url] : cases) {
        SCOPED_TRACE(what);
        window(url);
        run(true);
        EXPECT_EQ(check->txtInformation()->toPlainText(),
                  "Error Connecting to Ravelcue's Website!");
        EXPECT_EQ(check->txtCurrentVersion()->text(), "") << "the version fields stay as they were";
        EXPECT_EQ(check->txtAvailableUpdate()->text(), "");
        EXPECT_FALSE(check->cmdDownLoad()->isEnabled());
    }
    EXPECT_EQ(silent.requests(), QStringList{"/downloads/app.txt"});
    EXPECT_TRUE(prompts.shown().empty());
}

TEST_F(Updates, TheSilentCheckSpeaksOnlyOfANewerVersionAndLeavesThePopupAlone) {
    popup.ShowPopup("Loading Ravelcue. Please standby....", 0);
    test::LocalHttpServer server("2.0.0&&&Big news");
    window(server.downloadUrl());
    run(false);
    EXPECT_EQ(prompts.texts(), QStringList{"There is a new version of Ravelcue available."});
    EXPECT_EQ(prompts.shown().front().icon, ui::MessageIcon::Information);
    EXPECT_FALSE(check->isVisible());
    EXPECT_EQ(check->txtAvailableUpdate()->text(), "2.0.0") << "fields are filled all the same";

    prompts.clear();
    server.setBody("1.2.3&&&Nothing new");
    run(false);
    window(test::closedDownloadUrl());
    run(false);
    EXPECT_TRUE(prompts.shown().empty());
    QCoreApplication::processEvents();
    EXPECT_EQ(popupText(), "Loading Ravelcue. Please standby....");
}

TEST_F(Updates, DownloadHandsThePackageToTheBrowserUntilACheckFindsNothingNewer) {
    test::LocalHttpServer server("1.3&&&x");
    window(server.downloadUrl());
    run(true);
    QPushButton* download = check->cmdDownLoad();
    QTest::mouseClick(download, Qt::LeftButton);
    EXPECT_EQ(desktop.opened, QList<QUrl>{QUrl(server.downloadUrl() + "RV.zip")});

    // The same window checks again and finds nothing newer: the button stays enabled, and says so.
    server.setBody("1.2.3&&&x");
    run(true);
    EXPECT_EQ(check->DLWhat(), "none");
    ASSERT_TRUE(download->isEnabled());
    QTest::mouseClick(download, Qt::LeftButton);
    EXPECT_EQ(prompts.texts(), QStringList{"You Are Up To Date!"});
    EXPECT_EQ(desktop.opened.size(), 1);
}

} // namespace
} // namespace ravelcue::utilities
