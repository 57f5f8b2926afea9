#include "utilities/FileDeleteDialog.h"

#include "platform/ui/HelpWindow.h"
#include "support/ScriptedPrompts.h"
#include "support/TempFolder.h"

#include <string>
#include <vector>

#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace ravelcue::utilities {
namespace {

// The dialog over a data folder of the test's own.
class DeleteFiles : public ::testing::Test {
protected:
    void add(const QString& folder, const QString& name, qint64 bytes = 10) {
        QFile file(QDir(data.folder(folder)).filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(bytes, 'x'));
    }
    void open() {
        dialog = std::make_unique<FileDeleteDialog>(
            data.path(), [this](std::string_view word) { words.emplace_back(word); }, prompts,
            help);
        dialog->show();
    }
    void click(const char* name) {
        QTest::mouseClick(dialog->findChild<QAbstractButton*>(name), Qt::LeftButton);
    }
    QString heading(const char* name) { return dialog->findChild<QLabel*>(name)->text(); }
    static QTreeWidgetItem* row(QTreeWidget* list, const QString& name) {
        return list->findItems(name, Qt::MatchExactly, 0).value(0);
    }
    // The names of the rows, or of the ticked rows only.
    static QStringList names(QTreeWidget* list, bool tickedOnly = false) {
        QStringList texts;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = list->topLevelItem(i);
            if (!tickedOnly || item->checkState(0) == Qt::Checked) {
                texts << item->text(0);
            }
        }
        return texts;
    }

    test::TempFolder data;
    test::ScriptedPrompts prompts;
    ui::HelpWindow help;
    std::vector<std::string> words;
    std::unique_ptr<FileDeleteDialog> dialog;
};

TEST_F(DeleteFiles, AFileThatCannotBeDeletedStopsTheWalkWithItsRowsStillTicked) {
    for (const char* name : {"a.avi", "b.avi", "c.avi", "d.avi"}) {
        add("Videos", name);
    }
    add("Images", "shot.jpg");
    open();
    QTreeWidget* list = dialog->lvVideoFiles();
    for (int i = 0; i < 2; ++i) {
        emit list->header()->sectionClicked(0); // twice: rows in name order
    }
    for (const char* name : {"a.avi", "b.avi", "d.avi"}) {
        row(list, name)->setCheckState(0, Qt::Checked);
    }
    row(dialog->lvImageFiles(), "shot.jpg")->setCheckState(0, Qt::Checked);
    // b.avi becomes a folder with a file in it, which no file removal can take away.
    const QDir videos(data.file("Videos"));
    ASSERT_TRUE(QFile::remove(videos.filePath("b.avi")) && videos.mkdir("b.avi"));
    add("Videos/b.avi", "inside");
    click("cmdDelete");

    ASSERT_EQ(prompts.texts(), QStringList{"Error while deleting file"});
    EXPECT_EQ(prompts.shown().front().icon, ui::MessageIcon::Exclamation);
    EXPECT_FALSE(videos.exists("d.avi")) << "the last row went first";
    EXPECT_EQ(names(list), (QStringList{"a.avi", "b.avi", "c.avi"}));
    EXPECT_EQ(names(list, true), (QStringList{"a.avi", "b.avi"}));
    EXPECT_TRUE(videos.exists("a.avi"));
    EXPECT_TRUE(QFile::exists(data.file("Images/shot.jpg")))
        << "the images wait for the next press";
    EXPECT_EQ(heading("Label2"), "4 Video Files") << "headings are not refreshed";
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(DeleteFiles, SelectAllFollowsItsOwnMemoryNotTheRows) {
    for (const char* name : {"a.avi", "b.avi", "c.avi"}) {
        add("Videos", name);
    }
    open();
    QTreeWidget* list = dialog->lvVideoFiles();
    row(list, "b.avi")->setCheckState(0, Qt::Checked);
    click("chkAllVideos");
    EXPECT_EQ(names(list, true).size(), 3) << "the first click ticks everything";
    row(list, "a.avi")->setCheckState(0, Qt::Unchecked);
    click("chkAllVideos");
    EXPECT_TRUE(names(list, true).isEmpty()) << "the second clears everything";
    click("chkAllVideos");
    EXPECT_EQ(names(list, true).size(), 3);
}

TEST_F(DeleteFiles, CancelAndTheCloseBoxGoBackToLiveAndHelpShowsItsTopic) {
    open();
    click("cmdHelp");
    EXPECT_EQ(help.source(), ui::HelpWindow::topicUrl(20));
    click("cmdCancel");
    open();
    dialog->close();
    EXPECT_EQ(words, (std::vector<std::string>{"Live", "Live"}));
}

} // namespace
} // namespace ravelcue::utilities
