# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

# Installing Quillix, in one of two layouts:
#
#   bundle (default): PREFIX/Quillix.app/bin/{quillix,quillix-capture}, a
#       folder that can be moved anywhere and replaces itself on update.
#   system (QUILLIX_SYSTEM_INSTALL=ON): the FHS layout under PREFIX (/usr for
#       the Debian package) with the desktop entry, icons, AppStream metadata,
#       man pages and the Debian copyright file.
#
# Both layouts are install components; the option only picks the one a plain
# `cmake --install` lays out. `cmake --install BUILD --component system` (or
# bundle) installs the other from the same build tree, and `cpack -G DEB`
# always packs the system layout, so one build serves both.

include(GNUInstallDirs)

option(QUILLIX_SYSTEM_INSTALL "Install under an FHS prefix (/usr) instead of a Quillix.app folder" OFF)
set(QUILLIX_PACKAGE_MAINTAINER "The Quillix developers <support@example.org>" CACHE STRING
    "Maintainer field of the Debian package")

if(QUILLIX_SYSTEM_INSTALL)
    set(quillix_bundle_only EXCLUDE_FROM_ALL)
    set(quillix_system_only "")
else()
    set(quillix_bundle_only "")
    set(quillix_system_only EXCLUDE_FROM_ALL)
endif()

# Installing and cpack only copy what a build made: cpack must not build the
# whole tree (with every test) first. scripts/package builds before packing.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(QUILLIX_PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging)
set(QUILLIX_METAINFO_ID io.github.quillix.Quillix)

# The program finds quillix-capture beside itself, so both layouts keep the
# two executables in one folder.
install(TARGETS quillix quillix-capture
    RUNTIME DESTINATION Quillix.app/bin COMPONENT bundle ${quillix_bundle_only})
install(TARGETS quillix quillix-capture
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT system ${quillix_system_only})

# quillix_system_files(DESTINATION dir FILES file… [RENAME name])
function(quillix_system_files)
    cmake_parse_arguments(PARSE_ARGV 0 ARG "" "DESTINATION;RENAME" "FILES")
    set(rename "")
    if(ARG_RENAME)
        set(rename RENAME ${ARG_RENAME})
    endif()
    install(FILES ${ARG_FILES} DESTINATION ${ARG_DESTINATION} ${rename}
        PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
        COMPONENT system ${quillix_system_only})
endfunction()

# Debian wants man pages and changelogs compressed with gzip -9n (no name,
# no time stamp, so the bytes do not change from build to build).
function(quillix_gzip source output)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${output} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

quillix_system_files(DESTINATION ${CMAKE_INSTALL_DATADIR}/applications
    FILES ${QUILLIX_PACKAGING_DIR}/quillix.desktop)
quillix_system_files(DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
    FILES ${QUILLIX_PACKAGING_DIR}/${QUILLIX_METAINFO_ID}.metainfo.xml)
quillix_system_files(DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
    FILES ${PROJECT_SOURCE_DIR}/src/resources/icons/Logo.svg RENAME quillix.svg)
foreach(size 16 22 24 32 48 64 128 256)
    quillix_system_files(DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
        FILES ${QUILLIX_PACKAGING_DIR}/icons/quillix-${size}.png RENAME quillix.png)
endforeach()

set(quillix_gzipped ${PROJECT_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${quillix_gzipped})
foreach(page quillix quillix-capture)
    quillix_gzip(${QUILLIX_PACKAGING_DIR}/man/${page}.1 ${quillix_gzipped}/${page}.1.gz)
    quillix_system_files(DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
        FILES ${quillix_gzipped}/${page}.1.gz)
endforeach()
quillix_gzip(${QUILLIX_PACKAGING_DIR}/changelog ${quillix_gzipped}/changelog.gz)
quillix_system_files(DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quillix
    FILES ${QUILLIX_PACKAGING_DIR}/copyright ${quillix_gzipped}/changelog.gz)

# The Debian package: the system layout under /usr. dpkg-shlibdeps finds the
# shared libraries (Qt 6, FFmpeg, OpenSSL, xcb, canberra); Recommends names
# what Quillix loads at run time without linking it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillix)
set(CPACK_PACKAGE_VENDOR "The Quillix developers")
set(CPACK_PACKAGE_CONTACT "${QUILLIX_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "screenshots and screen recordings from the system tray")
string(JOIN "\n" CPACK_PACKAGE_DESCRIPTION
    "Quillix lives in the system tray: global hotkeys capture an area of the"
    "screen (with an annotation editor) or a window, and record the screen or a"
    "window to MP4. A gallery under the tray icon keeps the recent captures"
    "with colour labels, events and search; shelves gather captures in folders"
    "of their own.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${QUILLIX_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "gstreamer1.0-plugins-good, gstreamer1.0-libav, sound-theme-freedesktop")
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};${PROJECT_NAME};system;/")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
