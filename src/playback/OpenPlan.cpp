#include "OpenPlan.h"

#include "core/FileSetNames.h"
#include "core/TextCase.h"

#include <algorithm>

namespace ravelcue::playback {

namespace {

// "*.avi;*.AVI" for "avi".
std::string bothCases(std::string_view extension) {
    return "*." + std::string(extension) + ";*." + asciiUpper(extension);
}

} // namespace

int OpenPlan::presentCount() const {
    return static_cast<int>(std::count(present.begin(), present.end(), true));
}

int OpenPlan::firstPresent() const {
    const auto found = std::find(present.begin(), present.end(), true);
    return found == present.end() ? -1 : static_cast<int>(found - present.begin());
}

OpenPlan planVideoOpen(std::string_view path, const Nicknames& nicknames,
                       const FileExists& exists) {
    OpenPlan plan;
    if (!names::isFileSetMember(path)) {
        plan.title = fileNameOf(path);
        return plan;
    }
    plan.way = OpenWay::FileSet;
    for (size_t i = 0; i < plan.members.size(); ++i) {
        plan.members[i] = names::fileSetMemberOf(path, nicknames[i]);
        plan.present[i] = exists(plan.members[i]);
    }
    plan.title = names::fileSetTitle(path);
    return plan;
}

OpenPlan planImageOpen(std::string_view path, const Nicknames& nicknames,
                       const FileExists& exists) {
    OpenPlan plan;
    if (path.find('(') == std::string_view::npos) {
        plan.title = fileNameOf(path);
        return plan;
    }
    plan.way = OpenWay::ImageSet;
    for (size_t i = 0; i < plan.members.size(); ++i) {
        plan.members[i] = names::imageSetMemberOf(path, nicknames[i]);
        plan.present[i] = exists(plan.members[i]);
    }
    plan.title = names::imageSetTitle(path);
    return plan;
}

std::string fileNameOf(std::string_view path) {
    const size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string videoFilter(std::string_view captureType) {
    const std::string first = captureType == "WMV" ? "WMV Files(*.wmv)|" + bothCases("wmv")
                                                   : "AVI Files(*.avi)|" + bothCases("avi");
    std::string videos = "Videos(*.avi;*.wmv;*.mp4;*.mov;*.mkv)|";
    bool firstType = true;
    for (std::string_view type : {"avi", "wmv", "mp4", "mov", "mkv"}) {
        videos += (firstType ? "" : ";") + bothCases(type);
        firstType = false;
    }
    return first + "|" + videos + "|All Files(*.*)|*.*";
}

std::string imageFilter() {
    return "JPG Files(*.jpg)|" + bothCases("jpg") + "|All Files(*.*)|*.*";
}

} // namespace ravelcue::playback
