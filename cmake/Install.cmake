# What an installed apconf consists of.
install(TARGETS apconf EXPORT apconf-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/apconf DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT apconf-targets NAMESPACE apconf:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/apconf)

write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/apconf-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/apconf-config.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/apconf-targets.cmake)\n")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/apconf-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/apconf-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/apconf)

configure_file(cmake/apconf.pc.in ${CMAKE_CURRENT_BINARY_DIR}/apconf.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/apconf.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The default vocabulary. Its places are fixed: the library reads them from /etc.
install(FILES etc/config_cmd_tree.xml etc/cmd_tree_help.txt DESTINATION /etc)
install(FILES etc/start_config.json DESTINATION /etc/config)
install(FILES etc/config_cmd_tree.rng DESTINATION ${CMAKE_INSTALL_DATADIR}/apconf)

if(APCONF_BUILD_HOST)
    install(FILES packaging/apconfd.service DESTINATION lib/systemd/system)
endif()
