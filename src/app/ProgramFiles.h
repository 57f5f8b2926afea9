#pragma once

#include <QString>

namespace ravelcue::app {

// Where an install puts the program's own files, relative to the folder of the program file
// ("../share/ravelcue" beside "bin").
QString installedDataFolder();

// The folder the program reads its own files from (the spoken commands in "Sounds"), found from
// the folder of the program file: the installed data folder when there is one, else the program
// file's own folder, as in a build tree. Nothing names the prefix, so an installed tree can be
// moved as a whole.
QString programFolder(const QString& executableFolder);

// Says, under the logging category "ravelcue.files" (quiet unless enabled with
// QT_LOGGING_RULES="ravelcue.files.info=true"), which program folder is in use, the spoken
// commands found in it and the help topics compiled in.
void reportProgramFiles(const QString& programFolder);

} // namespace ravelcue::app
