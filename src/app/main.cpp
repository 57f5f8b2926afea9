#include "Application.h"
#include "CommandLine.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (const auto answer = ravelcue::app::answerCommandLine(argc, argv)) {
        std::fputs(answer->text.c_str(), stdout);
        return answer->exitCode;
    }
    return ravelcue::app::runRavelcue(argc, argv);
}
