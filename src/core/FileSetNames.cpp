#include "FileSetNames.h"

#include "TextCase.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace ravelcue::names {

namespace {

bool endsWithAnyCase(std::string_view text, std::string_view tail) {
    return text.size() >= tail.size() &&
           asciiLower(text.substr(text.size() - tail.size())) == asciiLower(tail);
}

std::string_view lastThree(std::string_view path) {
    return path.size() >= 3 ? path.substr(path.size() - 3) : path;
}

// The characters between the last "/" and the last "(".
std::string nameBeforeBracket(std::string_view path) {
    const size_t slash = path.rfind('/');
    const size_t start = slash == std::string_view::npos ? 0 : slash + 1;
    const size_t bracket = path.rfind('(');
    if (bracket == std::string_view::npos || bracket < start) {
        return std::string(path.substr(start));
    }
    return std::string(path.substr(start, bracket - start));
}

// Replaces the extension at the end of the path (after its last ".", any case) by `with`.
std::string replaceExtension(std::string_view path, std::string_view with) {
    const size_t dot = path.rfind('.');
    const size_t slash = path.rfind('/');
    if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) {
        return std::string(path) + std::string(with);
    }
    return std::string(path.substr(0, dot)) + std::string(with);
}

bool isVideoType(std::string_view type) {
    return type == "avi" || type == "wmv" || type == "mp4" || type == "mov" || type == "mkv";
}

} // namespace

std::string captureExtension(std::string_view captureType) {
    if (captureType == "AVI") {
        return ".avi";
    }
    if (captureType == "WMV") {
        return ".wmv";
    }
    return {};
}

std::string memberPath(std::string_view folder, std::string_view base, std::string_view nickname,
                       std::string_view extension) {
    std::string path(folder);
    path.append(base).append("(").append(nickname).append(")").append(extension);
    return path;
}

bool isValidBaseName(std::string_view base) {
    return base.find_first_of("()+") == std::string_view::npos;
}

bool matchesCapturePattern(std::string_view fileName, std::string_view base,
                           std::string_view extension, NameCase baseCase) {
    if (fileName.size() < base.size() + extension.size()) {
        return false;
    }
    const std::string_view start = fileName.substr(0, base.size());
    const bool sameBase =
        baseCase == NameCase::Exact ? start == base : asciiLower(start) == asciiLower(base);
    return sameBase && endsWithAnyCase(fileName, extension);
}

bool isFileSetMember(std::string_view path) {
    return path.find('(') != std::string_view::npos && path.find('+') == std::string_view::npos;
}

std::string setBase(std::string_view path) {
    return std::string(path.substr(0, std::min(path.find('('), path.size())));
}

std::string fileSetMemberOf(std::string_view path, std::string_view nickname) {
    std::string member = setBase(path);
    member.append("(").append(nickname).append(").").append(lastThree(path));
    return member;
}

std::string fileSetTitle(std::string_view path) {
    return nameBeforeBracket(path) + "(****).";
}

std::string imageSetStamp(std::string_view path) {
    // Only a "-" after the bracket counts: a folder such as /home/anne-marie must not take the
    // stamp's place.
    const size_t bracket = path.find('(');
    const size_t dash =
        bracket == std::string_view::npos ? path.find('-') : path.find('-', bracket);
    const size_t start = dash == std::string_view::npos ? 0 : dash + 1;
    return std::string(path.substr(std::min(start, path.size()), 6));
}

std::string imageSetMemberOf(std::string_view path, std::string_view nickname) {
    std::string member = setBase(path);
    member.append("(")
        .append(nickname)
        .append(")-")
        .append(imageSetStamp(path))
        .append(".")
        .append(lastThree(path));
    return member;
}

std::string imageSetTitle(std::string_view path) {
    return nameBeforeBracket(path) + "(****)-" + imageSetStamp(path) + ".jpg";
}

std::string stillStamp(int hours, int minutes, int seconds) {
    char text[16];
    std::snprintf(text, sizeof text, "-%02d%02d%02d", hours, minutes, seconds);
    return text;
}

std::string stillImageName(std::string_view source, std::string_view loadedFileType,
                           std::string_view nickname, std::string_view stamp,
                           std::string_view dataDir) {
    std::string name(source);
    if (source.find('(') != std::string_view::npos) {
        name = fileSetMemberOf(source, nickname);
    }
    const std::string withStamp = std::string(stamp) + ".jpg";
    if (isVideoType(loadedFileType)) {
        // Only our own Videos folder has an Images folder beside it; a user's ~/Videos does not.
        const std::string videos = std::string(dataDir) + "/Videos/";
        if (!dataDir.empty() && name.starts_with(videos)) {
            name.replace(0, videos.size(), std::string(dataDir) + "/Images/");
        }
        return replaceExtension(name, withStamp);
    }
    if (loadedFileType == "img") {
        return replaceExtension(name, withStamp);
    }
    return {};
}

std::string savedVideoSource(std::string_view currentVideoFile, std::string_view nickname) {
    if (currentVideoFile.find('(') != std::string_view::npos) {
        return fileSetMemberOf(currentVideoFile, nickname);
    }
    return std::string(currentVideoFile);
}

std::string savedVideoDestination(std::string_view source) {
    const size_t dot = source.rfind('.');
    const size_t slash = source.rfind('/');
    if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) {
        return std::string(source) + "+";
    }
    return std::string(source.substr(0, dot)) + "+" + std::string(source.substr(dot));
}

} // namespace ravelcue::names
