#include "app/CommandLine.h"

#include "core/Version.h"

#include <gtest/gtest.h>

namespace ravelcue::app {
namespace {

std::optional<CommandLineAnswer> answer(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "ravelcue");
    return answerCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

TEST(CommandLine, AnswersHelpAndVersionAndLeavesTheRestToQt) {
    const std::string version = std::string("Ravelcue ") + kVersionText + "\n";
    const std::string usage = "Usage: ravelcue [--help | --version]\n";
    struct Case {
        std::vector<const char*> arguments;
        std::optional<std::string> startsWith; // nothing: the program starts
    };
    const Case cases[] = {
        {{}, std::nullopt},
        {{"-platform", "offscreen"}, std::nullopt},
        {{"--versions"}, std::nullopt},
        {{"--version"}, version},
        {{"--help"}, usage},
        {{"-h"}, usage},
        {{"-platform", "offscreen", "--version"}, version},
        {{"--help", "--version"}, usage},
    };
    for (const Case& c : cases) {
        const std::optional<CommandLineAnswer> got = answer(c.arguments);
        const std::string shown = c.arguments.empty() ? "(none)" : c.arguments.front();
        ASSERT_EQ(got.has_value(), c.startsWith.has_value()) << shown;
        if (got) {
            EXPECT_EQ(got->text.substr(0, c.startsWith->size()), *c.startsWith) << shown;
            EXPECT_EQ(got->exitCode, 0) << shown;
        }
    }
}

} // namespace
} // namespace ravelcue::app
