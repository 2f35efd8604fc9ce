# What is installed where, and the Debian packages that CPack makes of it: `sonavault`, and `sonavault-help` where the
# help's window is built. Nothing of tools/ or tests/ is in them.
if(NOT SONAVAULT_WINDOW)
    return()
endif()

include(GNUInstallDirs)
set(packaging "${CMAKE_SOURCE_DIR}/packaging")
set(made "${CMAKE_BINARY_DIR}/packaging")
file(MAKE_DIRECTORY "${made}/icons")

# The desktop's pictures of the emblem are drawn by the code that draws it in the window.
add_executable(sonavault-icons EXCLUDE_FROM_ALL "${packaging}/DrawIcons.cpp")
target_link_libraries(sonavault-icons PRIVATE shell Qt6::Gui)

# A sanitized or checked build is never installed, and its programs are slow or stop at others' leaks.
if(SONAVAULT_SANITIZE OR SONAVAULT_TIDY)
    return()
endif()

set(iconSizes 16 24 32 48 64 128 256)
list(TRANSFORM iconSizes REPLACE "(.+)" "${made}/icons/\\1.png" OUTPUT_VARIABLE icons)
add_custom_command(OUTPUT ${icons} COMMAND sonavault-icons "${made}/icons" DEPENDS sonavault-icons VERBATIM)

# The day that the release is dated: SOURCE_DATE_EPOCH where it is set, so that the same commit gives the same package.
string(TIMESTAMP SONAVAULT_RELEASE_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP SONAVAULT_CHANGELOG_DATE "%a, %d %b %Y 00:00:00 +0000" UTC)

set(compressed "")
function(compress_text source name)
    configure_file("${packaging}/${source}" "${made}/${name}" @ONLY)
    add_custom_command(OUTPUT "${made}/${name}.gz" DEPENDS "${made}/${name}"
                       COMMAND gzip -9nfk "${made}/${name}" VERBATIM)
    set(compressed ${compressed} "${made}/${name}.gz" PARENT_SCOPE)
endfunction()
compress_text(changelog.in changelog)
compress_text(sonavault.1.in sonavault.1)
compress_text(sonavault-help.1.in sonavault-help.1)
configure_file("${packaging}/com.calderwave.sonavault.metainfo.xml.in" "${made}/com.calderwave.sonavault.metainfo.xml" @ONLY)

# The program listens to the network, so what little the linker can do against an intruder is done.
foreach(program IN ITEMS sonavault sonavault-help)
    if(TARGET ${program})
        target_link_options(${program} PRIVATE LINKER:-z,relro,-z,now)
    endif()
endforeach()

add_custom_target(package-files ALL DEPENDS ${icons} ${compressed})
add_dependencies(package-files sonavault)

# --- sonavault ---

set(data "${CMAKE_INSTALL_DATADIR}")
install(TARGETS sonavault RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT sonavault)
install(FILES "${packaging}/sonavault.desktop" DESTINATION "${data}/applications" COMPONENT sonavault)
install(FILES "${made}/com.calderwave.sonavault.metainfo.xml" DESTINATION "${data}/metainfo" COMPONENT sonavault)
install(FILES "${packaging}/sonavault.svg" DESTINATION "${data}/icons/hicolor/scalable/apps" COMPONENT sonavault)
foreach(size IN LISTS iconSizes)
    install(FILES "${made}/icons/${size}.png" DESTINATION "${data}/icons/hicolor/${size}x${size}/apps"
            RENAME sonavault.png COMPONENT sonavault)
endforeach()
install(FILES "${packaging}/sonavault.service" DESTINATION lib/systemd/user COMPONENT sonavault)
install(FILES "${made}/sonavault.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT sonavault)
install(FILES "${packaging}/copyright" "${made}/changelog.gz" "${CMAKE_SOURCE_DIR}/docs/operations.md"
        DESTINATION "${data}/doc/sonavault" COMPONENT sonavault)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/formats" DESTINATION "${data}/doc/sonavault" COMPONENT sonavault)
set(CPACK_COMPONENTS_ALL sonavault)

# --- sonavault-help ---

if(TARGET sonavault-help)
    add_dependencies(package-files sonavault-help)
    install(TARGETS sonavault-help RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT help)
    install(FILES "${made}/sonavault-help.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT help)
    install(FILES "${packaging}/copyright" "${made}/changelog.gz" DESTINATION "${data}/doc/sonavault-help" COMPONENT help)
    list(APPEND CPACK_COMPONENTS_ALL help)
endif()

# --- The packages ---

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sonavault)
set(CPACK_PACKAGE_VENDOR "Calderwave Systems")
set(CPACK_PACKAGE_CONTACT "Calderwave Systems <sonavault@calderwave.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Besides the libraries: the window's faces, the way onto a Wayland desktop, and the zone in which a day ends.
set(CPACK_DEBIAN_SONAVAULT_PACKAGE_NAME sonavault)
set(CPACK_DEBIAN_SONAVAULT_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_SONAVAULT_PACKAGE_DEPENDS "fonts-inter, fonts-jetbrains-mono, qt6-wayland, tzdata")
set(CPACK_DEBIAN_SONAVAULT_PACKAGE_RECOMMENDS "pipewire-pulse | pulseaudio, xdg-utils")
set(CPACK_DEBIAN_SONAVAULT_PACKAGE_SUGGESTS sonavault-help)
set(CPACK_DEBIAN_SONAVAULT_DESCRIPTION "recorder of a radio station's air
Sonavault runs all day on a desktop computer at a radio station and records
what went out into one MP3 file a calendar day, in which a position is the
wall clock, with a log of the day's markers.
.
A recording that was cut by a lost link, a crash or a power cut goes on in the
same file, and the outage stands in it as silence of its own length. Any day
can be seen on a timeline, heard from any moment and cut without encoding it
again.")

set(CPACK_DEBIAN_HELP_PACKAGE_NAME sonavault-help)
set(CPACK_DEBIAN_HELP_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_HELP_PACKAGE_DEPENDS "sonavault (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_HELP_DESCRIPTION "help window of Sonavault
Shows the online manual of the Sonavault recorder in a window of its own, with
a web engine. Without it the help opens in the system's browser.
.
It is a process and a package of its own, so that the recorder depends on no
web engine.")

include(CPack)
