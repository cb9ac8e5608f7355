# What an installed apconf consists of, in three parts: libapconf1 is what programs need to run, libapconf-dev what they
# need to be built, apconf the server, the tool and the vocabulary.
set(APCONF_UNIT_DIR lib/systemd/system CACHE STRING "Where the systemd unit goes")

install(TARGETS apconf EXPORT apconf-targets LIBRARY
        DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libapconf1 NAMELINK_COMPONENT libapconf-dev)

install(DIRECTORY include/apconf DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT libapconf-dev
        FILES_MATCHING PATTERN "*.h")
install(EXPORT apconf-targets NAMESPACE apconf:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/apconf
        COMPONENT libapconf-dev)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/apconf-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/apconf-config.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/apconf-targets.cmake)\n")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/apconf-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/apconf-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/apconf COMPONENT libapconf-dev)
configure_file(cmake/apconf.pc.in ${CMAKE_CURRENT_BINARY_DIR}/apconf.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/apconf.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT libapconf-dev)

file(GLOB documents CONFIGURE_DEPENDS docs/*.md)
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libapconf-dev COMPONENT libapconf-dev)
file(GLOB examples CONFIGURE_DEPENDS examples/*.c)
install(FILES ${examples} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libapconf-dev/examples COMPONENT libapconf-dev)

if(APCONF_BUILD_HOST)
    # The default vocabulary. Its places are fixed: the library reads them from /etc.
    install(FILES etc/config_cmd_tree.xml etc/cmd_tree_help.txt DESTINATION /etc COMPONENT apconf)
    install(FILES etc/start_config.json DESTINATION /etc/config COMPONENT apconf)
    install(FILES etc/config_cmd_tree.rng DESTINATION ${CMAKE_INSTALL_DATADIR}/apconf COMPONENT apconf)

    configure_file(packaging/apconfd.service.in ${CMAKE_CURRENT_BINARY_DIR}/apconfd.service @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/apconfd.service DESTINATION ${APCONF_UNIT_DIR} COMPONENT apconf)

    file(GLOB completions CONFIGURE_DEPENDS completions/bash/*)
    install(FILES ${completions} DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT apconf)
    file(GLOB completions CONFIGURE_DEPENDS completions/zsh/*)
    install(FILES ${completions} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT apconf)
endif()

# Compresses a text of the source tree into the build tree, the same bytes every time, and gives the result's path.
set(compressed_files)
function(apconf_compress source name result)
    set(compressed ${CMAKE_CURRENT_BINARY_DIR}/compressed/${name}.gz)
    add_custom_command(OUTPUT ${compressed}
                       COMMAND gzip -9nc ${CMAKE_CURRENT_SOURCE_DIR}/${source} > ${compressed}
                       DEPENDS ${source} VERBATIM)
    list(APPEND compressed_files ${compressed})
    set(compressed_files ${compressed_files} PARENT_SCOPE)
    set(${result} ${compressed} PARENT_SCOPE)
endfunction()

file(GLOB pages CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} man/*.[1-9])
foreach(page ${pages})
    get_filename_component(name ${page} NAME)
    string(REGEX MATCH "[1-9]$" section ${name})
    if(section EQUAL 3)
        set(component libapconf-dev)
    else()
        set(component apconf)
    endif()
    apconf_compress(${page} ${name} compressed)
    install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
endforeach()

if(APCONF_BUILD_PACKAGES)
    include(Packages)
endif()
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/compressed)
add_custom_target(apconf_compressed ALL DEPENDS ${compressed_files})
