// The reply of the update server, app.txt, and the comparison of its version with ours.
#include "FuzzInput.h"
#include "utilities/UpdateInfo.h"

using namespace ravelcue::utilities;
using ravelcue::fuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // As the update check reads it: the bytes as UTF-8, whatever they are.
    const QString reply =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<AppText> app = parseAppText(reply);
    if (!app) {
        return 0;
    }
    check(app->version == app->version.trimmed(), "the version stands without blanks");
    const QString& offered = app->version;
    check(!isNewerVersion(offered, offered), "no version is newer than itself");
    for (const QString& own :
         {QStringLiteral("1.0.0"), QStringLiteral("1.10"), QStringLiteral("0")}) {
        check(!(isNewerVersion(offered, own) && isNewerVersion(own, offered)),
              "of two versions at most one is newer");
    }
    // The rest of the reply compared with the version, as a second offer.
    const QString other = app->information.section(QLatin1Char('\n'), 0, 0);
    check(!(isNewerVersion(offered, other) && isNewerVersion(other, offered)),
          "of two versions at most one is newer");
    if (const std::optional<QList<int>> numbers = parseVersion(offered)) {
        for (const int number : *numbers) {
            check(number >= 0, "a version's numbers are whole numbers");
        }
    }
    return 0;
}
