#include "utilities/FileDeleteDialog.h"

#include "core/Twips.h"
#include "platform/ui/HelpWindow.h"
#include "support/ScriptedPrompts.h"
#include "support/TempFolder.h"
#include "utilities/SortKeys.h"

#include <string>
#include <vector>

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace ravelcue::utilities {
namespace {

// A data folder with Videos and Images, and the dialog over it.
class DeleteFiles : public ::testing::Test {
protected:
    void SetUp() override {
        videos = QDir(data.folder("Videos"));
        images = QDir(data.folder("Images"));
    }
    void addFile(const QDir& folder, const QString& name, qint64 bytes = 10) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(bytes, 'x'));
    }
    FileDeleteDialog& open() {
        dialog = std::make_unique<FileDeleteDialog>(
            data.path(), [this](std::string_view word) { words.emplace_back(word); }, prompts,
            help);
        dialog->show();
        return *dialog;
    }
    template <typename T>
    T* find(const QString& name) {
        return dialog->findChild<T*>(name);
    }
    void click(const QString& name) {
        QTest::mouseClick(find<QAbstractButton>(name), Qt::LeftButton);
    }
    // Two clicks on the name heading: the rows in name order.
    void sortByName(QTreeWidget* list) {
        for (int i = 0; i < 2; ++i) {
            emit list->header()->sectionClicked(0);
        }
    }
    static QTreeWidgetItem* row(QTreeWidget* list, const QString& name) {
        const QList<QTreeWidgetItem*> found = list->findItems(name, Qt::MatchExactly, 0);
        return found.isEmpty() ? nullptr : found.first();
    }
    static void tick(QTreeWidget* list, const QString& name) {
        row(list, name)->setCheckState(0, Qt::Checked);
    }
    static QStringList names(QTreeWidget* list) {
        QStringList texts;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            texts << list->topLevelItem(i)->text(0);
        }
        return texts;
    }
    static QStringList ticked(QTreeWidget* list) {
        QStringList texts;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            if (list->topLevelItem(i)->checkState(0) == Qt::Checked) {
                texts << list->topLevelItem(i)->text(0);
            }
        }
        return texts;
    }

    test::TempFolder data;
    QDir videos;
    QDir images;
    test::ScriptedPrompts prompts;
    ui::HelpWindow help;
    std::vector<std::string> words;
    std::unique_ptr<FileDeleteDialog> dialog;
};

TEST_F(DeleteFiles, ListsBothFoldersWithCountsSizesAndDates) {
    addFile(videos, "small.avi", 400);
    addFile(videos, "big(Cam1).wmv", 1500000);
    open();
    EXPECT_EQ(dialog->windowTitle(), "File Delete");
    EXPECT_EQ(find<QLabel>("Label2")->text(), "2 Video Files");
    EXPECT_EQ(find<QLabel>("Label3")->text(), "0 Image Files");
    EXPECT_EQ(dialog->lvImageFiles()->topLevelItemCount(), 0);

    QTreeWidget* list = dialog->lvVideoFiles();
    EXPECT_EQ(list->headerItem()->text(1), "SIze");
    EXPECT_EQ(dialog->lvImageFiles()->headerItem()->text(1), "Size");
    EXPECT_EQ(row(list, "small.avi")->text(1), " KB");
    EXPECT_EQ(row(list, "big(Cam1).wmv")->text(1), "1,500 KB");
    const QDateTime changed = QFileInfo(videos.filePath("small.avi")).lastModified();
    EXPECT_EQ(row(list, "small.avi")->text(2), dateTimeText(changed, QLocale()));
    EXPECT_EQ(ticked(list), QStringList{}) << "nothing is ticked at opening";
    EXPECT_GT(list->columnWidth(0), list->columnWidth(2));
    EXPECT_GT(list->columnWidth(2), list->columnWidth(1));
}

TEST_F(DeleteFiles, DeleteRemovesTickedFilesFromLastToFirstAndRecountsBothFolders) {
    for (const char* name : {"a.avi", "b.avi", "c.avi", "d.avi", "e.avi"}) {
        addFile(videos, name);
    }
    addFile(images, "shot.jpg");
    addFile(images, "keep.jpg");
    open();
    sortByName(dialog->lvVideoFiles());
    for (const char* name : {"a.avi", "c.avi", "e.avi"}) {
        tick(dialog->lvVideoFiles(), name);
    }
    tick(dialog->lvImageFiles(), "shot.jpg");
    click("cmdDelete");

    EXPECT_TRUE(prompts.shown().empty());
    EXPECT_EQ(names(dialog->lvVideoFiles()), (QStringList{"b.avi", "d.avi"}));
    EXPECT_EQ(QDir(videos).entryList(QDir::Files, QDir::Name), (QStringList{"b.avi", "d.avi"}));
    EXPECT_EQ(names(dialog->lvImageFiles()), QStringList{"keep.jpg"});
    EXPECT_FALSE(images.exists("shot.jpg"));
    EXPECT_EQ(find<QLabel>("Label2")->text(), "2 Video Files");
    EXPECT_EQ(find<QLabel>("Label3")->text(), "1 Image Files");
    EXPECT_TRUE(dialog->isVisible()) << "deleting does not close the dialog";
    EXPECT_TRUE(words.empty());
}

TEST_F(DeleteFiles, AFileThatCannotBeDeletedStopsTheWalkWithItsRowsStillTicked) {
    for (const char* name : {"a.avi", "b.avi", "c.avi", "d.avi"}) {
        addFile(videos, name);
    }
    addFile(images, "shot.jpg");
    open();
    sortByName(dialog->lvVideoFiles());
    for (const char* name : {"a.avi", "b.avi", "d.avi"}) {
        tick(dialog->lvVideoFiles(), name);
    }
    tick(dialog->lvImageFiles(), "shot.jpg");
    // b.avi becomes a folder that holds a file: no file removal can take it away.
    ASSERT_TRUE(videos.remove("b.avi"));
    ASSERT_TRUE(videos.mkdir("b.avi"));
    addFile(QDir(videos.filePath("b.avi")), "inside");
    click("cmdDelete");

    ASSERT_EQ(prompts.texts(), QStringList{"Error while deleting file"});
    EXPECT_EQ(prompts.shown().front().icon, ui::MessageIcon::Exclamation);
    EXPECT_FALSE(videos.exists("d.avi")) << "the row after it in the walk was done";
    EXPECT_EQ(names(dialog->lvVideoFiles()), (QStringList{"a.avi", "b.avi", "c.avi"}));
    EXPECT_EQ(ticked(dialog->lvVideoFiles()), (QStringList{"a.avi", "b.avi"}));
    EXPECT_TRUE(videos.exists("a.avi"));
    EXPECT_TRUE(images.exists("shot.jpg")) << "the images wait for the next press";
    EXPECT_EQ(find<QLabel>("Label2")->text(), "4 Video Files") << "headings are not refreshed";
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(DeleteFiles, SelectAllFollowsItsOwnMemoryNotTheRows) {
    for (const char* name : {"a.avi", "b.avi", "c.avi"}) {
        addFile(videos, name);
    }
    open();
    QTreeWidget* list = dialog->lvVideoFiles();
    tick(list, "b.avi");
    click("chkAllVideos");
    EXPECT_EQ(ticked(list).size(), 3) << "the first click ticks everything";
    row(list, "a.avi")->setCheckState(0, Qt::Unchecked);
    click("chkAllVideos");
    EXPECT_TRUE(ticked(list).isEmpty()) << "the second clears everything";
    click("chkAllVideos");
    EXPECT_EQ(ticked(list).size(), 3);

    click("chkAllImages"); // an empty list: only the memory turns
    click("chkAllImages");
    EXPECT_TRUE(ticked(dialog->lvImageFiles()).isEmpty());
}

TEST_F(DeleteFiles, OkCancelAndTheCloseBoxAllGoBackToLive) {
    for (const char* button : {"cmdOK", "cmdCancel", ""}) {
        words.clear();
        open();
        if (*button != '\0') {
            click(button);
        } else {
            dialog->close();
        }
        EXPECT_EQ(words, std::vector<std::string>{"Live"}) << button;
        EXPECT_FALSE(dialog->isVisible());
    }
    open();
    click("cmdHelp");
    ASSERT_NE(help.window(), nullptr);
    EXPECT_TRUE(help.window()->isVisible());
    EXPECT_EQ(help.source(), ui::HelpWindow::topicUrl(20));
}

TEST_F(DeleteFiles, ResizingFollowsTheRulesAboveTheSmallestSize) {
    open();
    const QScreen* screen = dialog->screen();
    TwipsScale scale{screen->logicalDotsPerInchX(), screen->logicalDotsPerInchY()};
    dialog->resize(900, 560);
    const double width = scale.toTwipsX(900) + 240;
    const double height = scale.toTwipsY(560) + 570;
    const QRect videoList = dialog->lvVideoFiles()->geometry();
    EXPECT_NEAR(videoList.width(), scale.toPixelsX((width - 570) / 2), 1);
    EXPECT_NEAR(videoList.height(), scale.toPixelsY(height - 2370), 1);
    EXPECT_NEAR(dialog->lvImageFiles()->x(), videoList.right() + 1 + scale.toPixelsX(105), 1);
    EXPECT_NEAR(find<QWidget>("cmdOK")->x(), scale.toPixelsX(width - 1440), 1);
    EXPECT_NEAR(find<QWidget>("cmdDelete")->y(), scale.toPixelsY(height - 1065), 1);

    dialog->resize(300, 200);
    EXPECT_EQ(dialog->lvVideoFiles()->geometry(), videoList) << "too small: nothing moves";
}

} // namespace
} // namespace ravelcue::utilities
