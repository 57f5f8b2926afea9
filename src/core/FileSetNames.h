#pragma once

#include <string>
#include <string_view>

// How the files of a recording Set, its stills and its saved copies are named. A Set member is
// the base name, "(", the camera's nickname, ")" and the extension: match1(Cam2).avi. Nothing but
// the names ties a Set together, so these rules are the only index there is. Paths use "/".
namespace ravelcue::names {

// ".avi" for "AVI", ".wmv" for "WMV", "" for anything else.
std::string captureExtension(std::string_view captureType);

// folder (ending in "/") + base + "(" + nickname + ")" + extension.
std::string memberPath(std::string_view folder, std::string_view base, std::string_view nickname,
                       std::string_view extension);

// A base name may hold none of "(", ")" and "+": the first "(" of a member ends its base, and a
// "+" marks a saved copy.
bool isValidBaseName(std::string_view base);

// Whether a file name (no folder) is caught by the pattern base + "*" + extension used before a
// capture overwrites: any name that merely begins with the base and ends with the extension, so
// abc catches abcd(Cam1).avi and abc.avi. The extension is compared in any case, the base as the
// file system compares names: in any case where it ignores case (Windows, macOS), exactly
// elsewhere.
enum class NameCase { Exact, Ignored };
bool matchesCapturePattern(std::string_view fileName, std::string_view base,
                           std::string_view extension, NameCase baseCase);

// A picked path opens as a Set when it holds a "(" and no "+" (folders included).
bool isFileSetMember(std::string_view path);
// Everything before the first "(" of the path, folder included.
std::string setBase(std::string_view path);
// The member of the Set of `path` that belongs to the camera with this nickname: base, "(",
// nickname, ").", and the path's last three characters.
std::string fileSetMemberOf(std::string_view path, std::string_view nickname);
// The characters between the last "/" and the last "(", then "(****)." (the type follows later).
std::string fileSetTitle(std::string_view path);

// An image Set is found by base, nickname and time stamp: the six characters after the first "-"
// that follows the first "(" (the first "-" of the path when there is no "("), or the first six
// characters when there is no such "-".
std::string imageSetStamp(std::string_view path);
std::string imageSetMemberOf(std::string_view path, std::string_view nickname);
// The characters between the last "/" and the last "(", "(****)-", the stamp and ".jpg".
std::string imageSetTitle(std::string_view path);

// "-hhmmss" on the 24-hour clock.
std::string stillStamp(int hours, int minutes, int seconds);

// The JPEG name of a still taken from `source` (a video of `loadedFileType` "avi", "wmv", "mp4",
// "mov", "mkv", or an image, "img"). A bracketed source takes the nickname of the player the
// still comes from in place of its own; a video in the Videos folder of the data folder `dataDir`
// has its still in the Images folder beside it, any other its still beside itself; the extension
// gives way to the stamp and ".jpg". Empty for any other file type.
std::string stillImageName(std::string_view source, std::string_view loadedFileType,
                           std::string_view nickname, std::string_view stamp,
                           std::string_view dataDir);

// The file a save with markups reads: for a bracketed name the member of the selected player,
// else the file itself.
std::string savedVideoSource(std::string_view currentVideoFile, std::string_view nickname);
// Where it goes: a "+" before the extension, beside the source (Break(Cam1).avi gives
// Break(Cam1)+.avi).
std::string savedVideoDestination(std::string_view source);

} // namespace ravelcue::names
