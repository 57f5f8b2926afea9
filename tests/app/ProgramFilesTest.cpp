#include "app/ProgramFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace ravelcue::app {
namespace {

TEST(ProgramFiles, TheDataFolderOfAnInstallElseBesideTheProgram) {
    enum class Tree { Build, Installed, DataFolderIsAFile };
    for (const Tree tree : {Tree::Build, Tree::Installed, Tree::DataFolderIsAFile}) {
        const QTemporaryDir root;
        const QString bin = root.path() + QStringLiteral("/bin");
        const QString data = QDir(bin).filePath(installedDataFolder());
        ASSERT_TRUE(QDir().mkpath(bin));
        if (tree == Tree::Installed) {
            ASSERT_TRUE(QDir().mkpath(data + QStringLiteral("/Sounds")));
        } else if (tree == Tree::DataFolderIsAFile) {
            ASSERT_TRUE(QDir().mkpath(QFileInfo(data).path()));
            QFile file(data);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        }
        const QString expected =
            tree == Tree::Installed ? QFileInfo(data).canonicalFilePath() : bin;
        EXPECT_EQ(programFolder(bin).toStdString(), expected.toStdString())
            << static_cast<int>(tree);
    }
    // An install keeps its data beside bin, whatever the prefix.
    EXPECT_FALSE(QDir::isAbsolutePath(installedDataFolder()));
}

} // namespace
} // namespace ravelcue::app
