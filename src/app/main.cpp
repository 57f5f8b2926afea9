#include "Application.h"

int main(int argc, char** argv) {
    return ravelcue::app::runRavelcue(argc, argv);
}
