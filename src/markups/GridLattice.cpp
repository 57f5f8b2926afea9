#include "GridLattice.h"

namespace ravelcue::markups {

int gridSpacing(std::string_view word, int width) {
    if (word == "Course") {
        return width / 5;
    }
    if (word == "Medium") {
        return width / 10;
    }
    if (word == "Fine") {
        return width / 20;
    }
    return 0;
}

std::vector<int> gridLines(int spacing, int extent) {
    std::vector<int> lines;
    if (spacing <= 0) {
        return lines;
    }
    for (int at = 0; at <= extent; at += spacing) {
        lines.push_back(at);
    }
    return lines;
}

} // namespace ravelcue::markups
