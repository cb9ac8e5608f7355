# Debian packages: what policy asks for beyond an installation, and how CPack makes the three .debs of Install.cmake's
# parts.
set(maintainer "The apconf developers <apconf@packages.invalid>")
set(release 1)

# Every package has its copyright and both changelogs.
set(CPACK_COMPONENTS_ALL libapconf1 libapconf-dev apconf)
apconf_compress(packaging/debian/changelog changelog.Debian debian_changelog)
apconf_compress(CHANGELOG.md changelog changelog)
foreach(component ${CPACK_COMPONENTS_ALL})
    install(FILES packaging/debian/copyright ${debian_changelog} ${changelog}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${component} COMPONENT ${component})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The apconf developers")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 1)  # xz's output depends on it
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE apconf)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(same_version "(= ${PROJECT_VERSION}-${release})")

set(CPACK_DEBIAN_LIBAPCONF1_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBAPCONF1_DESCRIPTION "configuration commands of an access point - library
The command tree, the parameter types, the message dispatch, the socket and the
queue that every process uses which takes part in the configuration of a
wireless access point.")

set(CPACK_DEBIAN_LIBAPCONF-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBAPCONF-DEV_PACKAGE_DEPENDS "libapconf1 ${same_version}, libjson-c-dev, libxml2-dev")
set(CPACK_DEBIAN_LIBAPCONF-DEV_DESCRIPTION "configuration commands of an access point - development files
Headers, pkg-config and CMake files, documentation and examples for programs
that send, serve or store the configuration of a wireless access point.")

set(CPACK_DEBIAN_APCONF_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_APCONF_PACKAGE_DEPENDS "libapconf1 ${same_version}")
set(CPACK_DEBIAN_APCONF_DESCRIPTION "configuration server of an access point and its command-line tool
apconfd keeps the configuration of a wireless access point, takes messages from
its socket and its queue, and survives a crash; apconf sets, reads, lists and
commits it. The default vocabulary describes all of the commands.")

# Control files: the library cache's trigger, the maintainer scripts, and the vocabulary as configuration that an upgrade leaves alone.
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/control/conffiles
     "/etc/cmd_tree_help.txt\n/etc/config/start_config.json\n/etc/config_cmd_tree.xml\n")
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/control/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBAPCONF1_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/control/triggers)
set(scripts ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian)
set(CPACK_DEBIAN_APCONF_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_BINARY_DIR}/control/conffiles ${scripts}/postinst ${scripts}/prerm ${scripts}/postrm)

include(CPack)
