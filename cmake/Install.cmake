# Headers, libraries, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/cvcells)
install(TARGETS cvcells cvcells_host EXPORT cvcellsTargets)
if(TARGET cvcells_database)
    install(TARGETS cvcells_database EXPORT cvcellsTargets)
endif()
install(EXPORT cvcellsTargets NAMESPACE cvcells:: DESTINATION ${package_dir})
install(DIRECTORY src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cvcells
        FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE PATTERN "GrammarActions.h" EXCLUDE)
install(DIRECTORY host DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cvcells FILES_MATCHING PATTERN "*.h")
if(TARGET cvcells_program)
    install(TARGETS cvcells_program)
endif()
install(DIRECTORY resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/cvcells/languages)

configure_package_config_file(cmake/cvcellsConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/cvcellsConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/cvcellsConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/cvcellsConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/cvcellsConfigVersion.cmake DESTINATION ${package_dir})

set(pkgconfig_files cvcells)
if(TARGET cvcells_database)
    list(APPEND pkgconfig_files cvcells-database)
endif()
foreach(name ${pkgconfig_files})
    configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
