# Headers, libraries, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/cvcells)
set(libraries cvcells cvcells_host)
if(TARGET cvcells_database)
    list(APPEND libraries cvcells_database)
endif()
install(TARGETS ${libraries} EXPORT cvcellsTargets
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cvcells)
install(EXPORT cvcellsTargets NAMESPACE cvcells:: DESTINATION ${package_dir})
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
