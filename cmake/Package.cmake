# The Debian package, built by CPack from the install rules (tools/package). Its dependencies
# are the packages of the libraries the programs link, found by dpkg-shlibdeps, and the plugins
# Qt loads at run time, which no link names.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ravelcue)
set(CPACK_PACKAGE_VENDOR Ravelcue)
set(CPACK_PACKAGE_CONTACT "Ravelcue <${RAVELCUE_CONTACT_MAIL}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "record, replay and measure cue-sport practice")
# The summary above is the first line; CPack indents these lines and turns the empty one into
# the paragraph mark.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Ravelcue is a desktop tool for players of pool, snooker and billiards. With
up to four cameras and a microphone on one computer, a player can record the
cameras together, replay and mark up the videos frame by frame, measure break
speed from the sound of a shot, and train the stroke on coloured targets
followed in live video, with a voice saying which way to move the hand.

Demo cameras and a demo microphone let every feature be tried without any
hardware. The package also holds ravelcue-breakspeed, which measures a break
in a recording made elsewhere.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${RAVELCUE_WEB_URL})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Qt Multimedia lists microphones and plays sound through GStreamer's plugins.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "gstreamer1.0-plugins-base, gstreamer1.0-plugins-good")
# Wayland desktops without Qt's Wayland plugin run the window through XWayland; the look was
# drawn with Liberation Sans ("Arial").
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, fonts-liberation2")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
