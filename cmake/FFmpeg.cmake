# FFmpeg's libraries through pkg-config, as one imported target.
find_package(PkgConfig REQUIRED)
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET
    libavformat libavcodec libavdevice libavutil libswscale libswresample)
add_library(ravelcue_ffmpeg INTERFACE)
target_link_libraries(ravelcue_ffmpeg INTERFACE PkgConfig::FFMPEG)
# FFmpeg's headers are not ours to keep free of warnings.
get_target_property(_ffmpeg_includes PkgConfig::FFMPEG INTERFACE_INCLUDE_DIRECTORIES)
if(_ffmpeg_includes)
    target_include_directories(ravelcue_ffmpeg SYSTEM INTERFACE ${_ffmpeg_includes})
endif()
