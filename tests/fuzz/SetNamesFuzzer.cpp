// The names of recording Sets, image Sets, stills and saved copies, from picked paths and typed
// nicknames and base names.
#include "FuzzInput.h"
#include "core/FileSetNames.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace ravelcue::names;
using ravelcue::fuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string path = input.ConsumeRandomLengthString(300);
    const std::string nickname = input.ConsumeRandomLengthString(40);
    const std::string base = input.ConsumeRandomLengthString(60);
    const std::string dataDir = input.ConsumeRandomLengthString(80);
    const std::string type =
        input.PickValueInArray({"avi", "wmv", "mp4", "mov", "mkv", "img", "jpg", ""});

    // A Set: every member shares the base of the picked one, whatever the nickname holds.
    const bool member = isFileSetMember(path);
    const std::string ownBase = setBase(path);
    check(path.starts_with(ownBase), "a Set's base is the front of its path");
    if (member) {
        check(setBase(fileSetMemberOf(path, nickname)) == ownBase,
              "a Set member has the base of the picked file");
        check(setBase(imageSetMemberOf(path, nickname)) == ownBase,
              "an image Set member has the base of the picked file");
    }
    fileSetTitle(path);
    check(imageSetStamp(path).size() <= 6, "an image stamp is at most six characters");
    imageSetTitle(path);

    // Capture: a valid base makes members that open as a Set and are caught before overwriting.
    const std::string extension = captureExtension(input.PickValueInArray({"AVI", "WMV", "MP4"}));
    const std::string made = memberPath("", base, nickname, extension);
    if (isValidBaseName(base) && nickname.find('+') == std::string::npos) {
        check(isFileSetMember(made), "a captured member opens as a Set");
        check(setBase(made) == base, "a captured member's base is the base typed");
    }
    check(matchesCapturePattern(made, base, extension, NameCase::Exact),
          "a capture's own member is caught by its pattern");
    check(matchesCapturePattern(made, base, extension, NameCase::Ignored),
          "the pattern in any case catches what the exact one does");

    // Stills and saved copies.
    const std::string stamp =
        stillStamp(input.ConsumeIntegralInRange(0, 23), input.ConsumeIntegralInRange(0, 59),
                   input.ConsumeIntegralInRange(0, 59));
    check(stamp.size() == 7, "a still's stamp is -hhmmss");
    stillImageName(path, type, nickname, stamp, dataDir);
    const std::string source = savedVideoSource(path, nickname);
    const std::string destination = savedVideoDestination(source);
    check(destination.find('+') != std::string::npos, "a saved copy's name holds a +");
    check(!isFileSetMember(destination), "a saved copy never opens as a Set");
    return 0;
}
