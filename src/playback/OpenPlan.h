#pragma once

#include "core/AppState.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

// What a name picked in the open dialog opens, decided from the name alone and from which files
// exist: a single file into player 0, or the members of its Set into the players of their
// cameras.
namespace ravelcue::playback {

enum class OpenWay { Single, FileSet, ImageSet };

struct OpenPlan {
    OpenWay way = OpenWay::Single;
    // For a Set: the member of each camera, and whether that file exists.
    std::array<std::string, kCameraCount> members{};
    std::array<bool, kCameraCount> present{};
    // Shown in the status bar. A video Set's title still lacks its type ("match1(****).").
    std::string title;

    bool isSet() const { return way != OpenWay::Single; }
    int presentCount() const;
    // The lowest camera with a member, or -1.
    int firstPresent() const;
};

using FileExists = std::function<bool(const std::string& path)>;
using Nicknames = std::array<std::string, kCameraCount>;

// A video name opens as a Set when it holds a "(" and no "+".
OpenPlan planVideoOpen(std::string_view path, const Nicknames& nicknames, const FileExists& exists);
// An image name opens as a Set when it holds a "("; members share the stamp of the picked one.
OpenPlan planImageOpen(std::string_view path, const Nicknames& nicknames, const FileExists& exists);

// The name after the last "/".
std::string fileNameOf(std::string_view path);

// The filters of the open dialogs, as "Label(*.x)|*.x;*.X|...". Patterns come in both cases
// since file systems that tell case apart would hide "CLIP.AVI" from "*.avi".
std::string videoFilter(std::string_view captureType);
std::string imageFilter();

} // namespace ravelcue::playback
