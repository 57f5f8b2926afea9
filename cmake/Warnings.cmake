# Every target of ours builds with these warnings, and a warning fails the build.
add_library(ravelcue_warnings INTERFACE)
target_compile_options(ravelcue_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual
    -Wimplicit-fallthrough -Werror)
