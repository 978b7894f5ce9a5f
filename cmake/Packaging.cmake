# What an installation holds besides the programs and the shared data folder:
# the desktop entry, the icons, the AppStream metadata, the udev rule, the
# manual pages, the shell completion and the Debian documentation files; and
# the Debian package that carries them (scripts/package.sh).
#
# Manual pages and PNG icons are made at build time (help2man, rsvg-convert).
# A build without those tools installs everything else; the package needs
# them and scripts/package.sh says so.

set(QUORVEL_APP_ID "com.tessaluk.Quorvel")
set(QUORVEL_HOMEPAGE "https://tessaluk.example/quorvel"
    CACHE STRING "The project's home page, named in the package and its metadata")
set(QUORVEL_SCREENSHOTS_URL "${QUORVEL_HOMEPAGE}/screenshots"
    CACHE STRING "Where the pictures of docs/screenshots are published")
set(QUORVEL_MAINTAINER "Quorvel developers <quorvel@tessaluk.example>"
    CACHE STRING "The package's maintainer, as Name <address>")

# The system's own udev rules folder. Debian 12 keeps it under /lib (merged
# /usr or not); other prefixes get theirs and the README's manual step.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(default_udev_dir "/lib/udev/rules.d")
else()
    set(default_udev_dir "${CMAKE_INSTALL_LIBDIR}/udev/rules.d")
endif()
set(QUORVEL_UDEV_RULES_DIR "${default_udev_dir}" CACHE STRING "Where the udev rule is installed")

set(generated ${CMAKE_BINARY_DIR}/install-files)
file(MAKE_DIRECTORY ${generated})

# Desktop entry, metadata, rule, completion.
install(FILES data/${QUORVEL_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
configure_file(data/${QUORVEL_APP_ID}.metainfo.xml.in
               ${generated}/${QUORVEL_APP_ID}.metainfo.xml @ONLY)
install(FILES ${generated}/${QUORVEL_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES data/60-quorvel.rules DESTINATION ${QUORVEL_UDEV_RULES_DIR})
install(FILES data/completion/quorvelctl
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# Debian documentation: the copyright file, and the changelog of this
# version, compressed without a time stamp so that builds are reproducible.
execute_process(COMMAND date -u -R -d "${QUORVEL_RELEASE_DATE} 12:00"
                OUTPUT_VARIABLE QUORVEL_RELEASE_DATE_RFC2822 OUTPUT_STRIP_TRAILING_WHITESPACE)
configure_file(data/packaging/changelog.in ${generated}/changelog @ONLY)
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/quorvel)
install(FILES data/packaging/copyright DESTINATION ${doc_dir})

find_program(GZIP_PROGRAM gzip)
find_program(HELP2MAN_PROGRAM help2man)
find_program(RSVG_CONVERT_PROGRAM rsvg-convert)
set(extras)

if(GZIP_PROGRAM)
    add_custom_command(OUTPUT ${generated}/changelog.gz
        COMMAND ${GZIP_PROGRAM} -9nkf ${generated}/changelog
        DEPENDS ${generated}/changelog)
    list(APPEND extras ${generated}/changelog.gz)
    install(FILES ${generated}/changelog.gz DESTINATION ${doc_dir})
endif()

# Icons: the drawing itself, and the sizes menus and docks ask for.
install(FILES data/icons/quorvel.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
if(RSVG_CONVERT_PROGRAM)
    foreach(side 16 22 24 32 48 64 128 256)
        set(png ${generated}/icons/${side}x${side}/quorvel.png)
        add_custom_command(OUTPUT ${png}
            COMMAND ${CMAKE_COMMAND} -E make_directory ${generated}/icons/${side}x${side}
            COMMAND ${RSVG_CONVERT_PROGRAM} -w ${side} -h ${side}
                    ${CMAKE_SOURCE_DIR}/data/icons/quorvel.svg -o ${png}
            DEPENDS ${CMAKE_SOURCE_DIR}/data/icons/quorvel.svg)
        list(APPEND extras ${png})
        install(FILES ${png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${side}x${side}/apps)
    endforeach()
else()
    message(STATUS "rsvg-convert not found: the PNG icons are not made (the SVG one is)")
endif()

# Manual pages, from the programs' own --help and --version, so that they
# never drift from what the programs accept. A sanitizer build would run
# instrumented programs for this; it has no use for the pages.
if(HELP2MAN_PROGRAM AND GZIP_PROGRAM AND NOT QUORVEL_SANITIZE AND NOT QUORVEL_FUZZ)
    set(quorvel_name "commission and maintain Sorvane field controllers over USB")
    set(quorvelctl_name "read, program and commission Sorvane field controllers from the command line")
    set(quorvel-sim_name "simulated Sorvane controllers behind pseudo-terminals")
    foreach(program quorvel quorvelctl quorvel-sim)
        set(page ${generated}/man/${program}.1)
        add_custom_command(OUTPUT ${page}.gz
            COMMAND ${CMAKE_COMMAND} -E make_directory ${generated}/man
            COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen
                    ${HELP2MAN_PROGRAM} --no-info --no-discard-stderr --section=1
                    "--name=${${program}_name}"
                    --include=${CMAKE_SOURCE_DIR}/data/man/${program}.h2m
                    --output=${page} $<TARGET_FILE:${program}>
            COMMAND ${GZIP_PROGRAM} -9nf ${page}
            DEPENDS ${program} ${CMAKE_SOURCE_DIR}/data/man/${program}.h2m)
        list(APPEND extras ${page}.gz)
        install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    endforeach()
else()
    message(STATUS "help2man or gzip not found, or a sanitizer build: no manual pages")
endif()

add_custom_target(install_files ALL DEPENDS ${extras})

# The Debian package. Its dependencies are computed from the programs' own
# shared libraries (dpkg-shlibdeps); its version is the project's.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorvel)
set(CPACK_PACKAGE_VENDOR "Tessaluk")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${QUORVEL_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "commissioning tool for Sorvane field controllers")
# The synopsis above is the first line; CPack indents these lines and marks
# the empty one as a paragraph break.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Quorvel is the desktop tool a technician uses to commission and maintain
Sorvane battery-powered field controllers over USB: it lists the attached
controllers, reads everything one holds onto one window, edits and writes
its programme of valve conditions, sets and calibrates its clock, watches
and forces its output, hands firmware updates to the maker's loader,
prints the programme and logs production reports.

The package holds the window (quorvel), the command-line tool for scripts
and production benches (quorvelctl), a simulator of controllers
(quorvel-sim), and the udev rule that lets the user at the console reach
plugged controllers without root.")
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${QUORVEL_HOMEPAGE}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${CMAKE_SOURCE_DIR}/data/packaging/postinst)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
# Absolute destinations (the udev rule) go into the package, not onto the
# machine that builds it.
set(CPACK_SET_DESTDIR ON)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
