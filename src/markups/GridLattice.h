#pragma once

#include <string_view>
#include <vector>

namespace ravelcue::markups {

// The spacing of a grid word on a picture `width` pixels wide: "Course" a fifth, "Medium" a
// tenth, "Fine" a twentieth, whole pixels. 0 for any other word, and for a picture too narrow.
int gridSpacing(std::string_view word, int width);

// Where the lines of one direction stand: 0, s, 2s, ... up to and including `extent`.
// Empty when the spacing is not positive.
std::vector<int> gridLines(int spacing, int extent);

} // namespace ravelcue::markups
