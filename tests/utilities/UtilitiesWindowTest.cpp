#include "LocalHttpServer.h"
#include "app/WindowFixture.h"
#include "core/Version.h"
#include "platform/ui/HelpWindow.h"
#include "utilities/FileDeleteDialog.h"
#include "utilities/SortKeys.h"
#include "utilities/UpdateCheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

void addFile(const QString& path, qint64 bytes = 8) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(bytes, 'x'));
}

// Makes the window the active one, as a click on it would, and presses F1 there.
void pressF1(QWidget* window) {
    window->activateWindow();
    for (int turn = 0; turn < 100 && QApplication::activeWindow() != window; ++turn) {
        QCoreApplication::processEvents();
    }
    ASSERT_EQ(QApplication::activeWindow(), window);
    QTest::keyClick(window, Qt::Key_F1);
}

// The window of that name on screen, or null.
template <typename T = QWidget>
T* openWindow(const char* name) {
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == QLatin1String(name) && top->isVisible()) {
            return qobject_cast<T*>(top);
        }
    }
    return nullptr;
}

TEST(UtilitiesWindow, DeleteFilesListsTheDataFolderDeletesTickedFilesAndReturnsToLive) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion();
    app::MainWindow& window = fixture.start();
    const QDir data(QString::fromStdString(window.state().AppDataDir));
    addFile(data.filePath("Videos/drill(Cam1).avi"), 1500000);
    for (const char* name :
         {"Videos/drill(Cam2).avi", "Videos/break.avi", "Images/stance.jpg", "Images/grip.jpg"}) {
        addFile(data.filePath(name));
    }

    fixture.click("cmdDeleteFiles");
    EXPECT_EQ(window.state().CurrentState, "DeleteFiles");
    auto* dialog = openWindow<utilities::FileDeleteDialog>("frmFileDelete");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isModal());
    EXPECT_EQ(dialog->findChild<QLabel*>("Label2")->text(), "3 Video Files");
    EXPECT_EQ(dialog->findChild<QLabel*>("Label3")->text(), "2 Image Files");
    // Sizes in kilobytes under the heading as it always read, and the time in the system's form.
    QTreeWidget* videos = dialog->lvVideoFiles();
    EXPECT_EQ(videos->headerItem()->text(1), "SIze");
    QTreeWidgetItem* big = videos->findItems("drill(Cam1).avi", Qt::MatchExactly).value(0);
    ASSERT_NE(big, nullptr);
    EXPECT_EQ(big->text(1), "1,500 KB");
    const QFileInfo bigFile(data.filePath("Videos/drill(Cam1).avi"));
    EXPECT_EQ(big->text(2), utilities::dateTimeText(bigFile.lastModified(), QLocale()));
    EXPECT_GT(videos->columnWidth(0), videos->columnWidth(2));
    EXPECT_GT(videos->columnWidth(2), videos->columnWidth(1));

    for (QTreeWidget* list : {dialog->lvVideoFiles(), dialog->lvImageFiles()}) {
        for (const char* name : {"drill(Cam2).avi", "break.avi", "grip.jpg"}) {
            if (QTreeWidgetItem* row = list->findItems(name, Qt::MatchExactly).value(0)) {
                row->setCheckState(0, Qt::Checked);
            }
        }
    }
    QTest::mouseClick(dialog->findChild<QPushButton*>("cmdDelete"), Qt::LeftButton);
    EXPECT_EQ(QDir(data.filePath("Videos")).entryList(QDir::Files), QStringList{"drill(Cam1).avi"});
    EXPECT_EQ(QDir(data.filePath("Images")).entryList(QDir::Files), QStringList{"stance.jpg"});
    EXPECT_EQ(dialog->findChild<QLabel*>("Label2")->text(), "1 Video Files");
    EXPECT_EQ(dialog->findChild<QLabel*>("Label3")->text(), "1 Image Files");
    EXPECT_EQ(window.state().CurrentState, "DeleteFiles");

    QTest::mouseClick(dialog->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window.state().CurrentState, "Live");
    EXPECT_EQ(openWindow<utilities::FileDeleteDialog>("frmFileDelete"), nullptr);
    EXPECT_TRUE(fixture.find<QPushButton>("cmdDeleteFiles")->isEnabled());
    EXPECT_TRUE(fixture.prompts.shown().empty());
}

TEST(UtilitiesWindow, TheHelpMenuOpensHelpTheWebSiteAndAbout) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion();
    app::MainWindow& window = fixture.start();

    QStringList entries;
    for (const QAction* action : window.findChild<QMenu*>("mnHelp")->actions()) {
        entries << (action->isSeparator() ? QStringLiteral("-") : action->objectName());
    }
    EXPECT_EQ(entries,
              (QStringList{"mnuContents", "-", "mnuWebSite", "mnuUpdateCheck", "-", "mnuAbout"}));
    EXPECT_EQ(fixture.find<QAction>("mnuContents")->shortcut(), QKeySequence(Qt::Key_F1));

    pressF1(&window);
    ASSERT_NE(openWindow("frmHelp"), nullptr);
    auto* help = openWindow("frmHelp")->findChild<QTextBrowser*>("txtHelp");
    EXPECT_EQ(help->source(), ui::HelpWindow::topicUrl(10));
    EXPECT_TRUE(help->toPlainText().contains("Delete Files"));

    fixture.click("cmdBreakSpeed");
    fixture.click("cmdBreakSpeedLog");
    QWidget* log = openWindow("frmBreakSpeedLog");
    ASSERT_NE(log, nullptr);
    QTest::mouseClick(log->findChild<QPushButton*>("cmdHelp"), Qt::LeftButton);
    EXPECT_EQ(help->source(), ui::HelpWindow::topicUrl(108));
    log->close();

    fixture.click("mnuWebSite");
    EXPECT_EQ(fixture.desktop.opened, QList<QUrl>{QUrl(kWebUrl)});

    fixture.click("mnuAbout");
    auto* about = openWindow<QDialog>("frmAbout");
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->isModal());
    EXPECT_EQ(about->windowTitle(), "About Ravelcue");
    EXPECT_EQ(about->findChild<QLabel*>("lblTitle")->text(), "Ravelcue");
    EXPECT_EQ(about->findChild<QLabel*>("lblVersion")->text(), "1.0.0");
    for (const char* link : {"URLLabel3", "URLLabel4", "URLLabel2", "URLLabel1"}) {
        emit about->findChild<QLabel*>(link)->linkActivated(QString());
    }
    EXPECT_EQ(fixture.desktop.opened.mid(1),
              (QList<QUrl>{QUrl::fromLocalFile(fixture.program.path()),
                           QUrl::fromLocalFile(QString::fromStdString(window.state().AppDataDir)),
                           QUrl(kWebUrl), QUrl(QStringLiteral("mailto:") + kContactMail)}));
    EXPECT_TRUE(
        about->findChild<QLabel*>("URLLabel4")
            ->text()
            .contains(QDir::toNativeSeparators(QString::fromStdString(window.state().AppDataDir))));
}

TEST(UtilitiesWindow, StartUpChecksSilentlyWhenAskedAndTheMenuShowsTheWindow) {
    LocalHttpServer server("99.0.0&&&A much newer Ravelcue.");
    WindowFixture fixture;
    fixture.downloadUrl = server.downloadUrl();
    fixture.answeredUpdateQuestion("1");
    fixture.start();
    while (fixture.prompts.shown().empty()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_EQ(fixture.prompts.texts(),
              QStringList{"There is a new version of Ravelcue available."});
    EXPECT_EQ(openWindow<utilities::UpdateCheck>("frmUpdateCheck"), nullptr)
        << "the silent check shows no window";

    fixture.click("mnuUpdateCheck");
    auto* check = openWindow<utilities::UpdateCheck>("frmUpdateCheck");
    ASSERT_NE(check, nullptr);
    EXPECT_TRUE(check->checking());
    while (check->checking()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_EQ(check->DLWhat(), server.downloadUrl() + "RV.zip");
    EXPECT_EQ(server.requests().size(), 2);
    pressF1(check);
    ASSERT_NE(openWindow("frmHelp"), nullptr);
    EXPECT_EQ(openWindow("frmHelp")->findChild<QTextBrowser*>("txtHelp")->source(),
              ui::HelpWindow::topicUrl(180));
}

TEST(HelpTopics, EveryTopicIsShippedAndEveryLinkLeadsToOne) {
    static const QRegularExpression link(QStringLiteral(R"re(href="(\d+)\.html")re"));
    for (const int topic : {10, 20, 108, 115, 160, 180}) {
        ASSERT_TRUE(ui::HelpWindow::hasTopic(topic)) << topic;
        QFile page(QStringLiteral(":/help/%1.html").arg(topic));
        ASSERT_TRUE(page.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(page.readAll());
        EXPECT_TRUE(html.contains("<h1>")) << topic;
        for (const QRegularExpressionMatch& m : link.globalMatch(html)) {
            EXPECT_TRUE(ui::HelpWindow::hasTopic(m.captured(1).toInt()))
                << topic << " links to " << m.captured(1).toStdString();
        }
    }
    EXPECT_FALSE(ui::HelpWindow::hasTopic(11));
}

} // namespace
} // namespace ravelcue::test
