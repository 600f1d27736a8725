# What `cmake --install` puts where. Three components: the libraries (runtime), what it takes to
# build against them (development), and the command (tools).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(SBD_INCLUDE_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/libsbd)
set(SBD_CMAKE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/sbd)
set(SBD_PKGCONFIG_FOLDER ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# ---- Libraries -----------------------------------------------------------------------------------

# Outside projects say sbd::sbd and the like; the names inside are those of the files.
set_target_properties(sbd_host PROPERTIES EXPORT_NAME host)
set_target_properties(sbd_host_static PROPERTIES EXPORT_NAME host_static)
set_target_properties(sbd_c PROPERTIES EXPORT_NAME c)

install(TARGETS sbd sbd_static sbd_host sbd_host_static sbd_c EXPORT sbd_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
                NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        INCLUDES DESTINATION ${SBD_INCLUDE_FOLDER})

foreach(folder h sbd)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.h)
  install(FILES ${headers} DESTINATION ${SBD_INCLUDE_FOLDER}/${folder} COMPONENT development)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/host/sbd_host.h DESTINATION ${SBD_INCLUDE_FOLDER}/host
        COMPONENT development)
# Programs in C know nothing of folders.
install(FILES ${PROJECT_SOURCE_DIR}/capi/sbd_c.h DESTINATION ${SBD_INCLUDE_FOLDER}
        COMPONENT development)

# ---- CMake package -------------------------------------------------------------------------------

install(EXPORT sbd_targets FILE sbdTargets.cmake NAMESPACE sbd:: DESTINATION ${SBD_CMAKE_FOLDER}
        COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/sbdConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/sbdConfig.cmake
                              INSTALL_DESTINATION ${SBD_CMAKE_FOLDER}
                              NO_SET_AND_CHECK_MACRO)
# Before 1.0 a new minor version may change what it likes.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/sbdConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/sbdConfig.cmake ${PROJECT_BINARY_DIR}/sbdConfigVersion.cmake
        DESTINATION ${SBD_CMAKE_FOLDER} COMPONENT development)

# ---- pkg-config ----------------------------------------------------------------------------------

# From the place of the .pc file, so that the tree may be installed and moved anywhere.
file(RELATIVE_PATH SBD_PC_PREFIX /${SBD_PKGCONFIG_FOLDER} /)
string(REGEX REPLACE "/$" "" SBD_PC_PREFIX "${SBD_PC_PREFIX}")

function(sbd_pkgconfig name description libraries private_libraries)
  set(NAME ${name})
  set(DESCRIPTION ${description})
  set(LIBRARIES ${libraries})
  set(PRIVATE_LIBRARIES ${private_libraries})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/pkgconfig.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${SBD_PKGCONFIG_FOLDER}
          COMPONENT development)
endfunction()

sbd_pkgconfig(sbd "System Build Descriptor files; needs host services, such as sbd_host" -lsbd
              -lstdc++)
sbd_pkgconfig(sbd_host "Standalone host services of sbd" -lsbd_host "-lstdc++ -pthread")
sbd_pkgconfig(sbd_c "System Build Descriptor files in C" -lsbd_c "")

# ---- Command -------------------------------------------------------------------------------------

if(SBD_BUILD_TOOL)
  # Finds the libraries of its own tree, wherever that was installed.
  file(RELATIVE_PATH to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(sbd_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
  install(TARGETS sbd_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)

  # Debian wants manual pages compressed; elsewhere nobody minds them as they are.
  set(manual ${SBD_MANUAL_FOLDER})
  if(SBD_PACKAGE)
    set(manual ${SBD_MANUAL_FOLDER}/compressed)
  endif()
  install(DIRECTORY ${manual}/man1 ${manual}/man5 DESTINATION ${CMAKE_INSTALL_MANDIR}
          COMPONENT tools)

  # Completion of the command line, where each shell looks for it. Under /usr, Debian's zsh looks
  # in a folder of its own.
  set(completion ${PROJECT_SOURCE_DIR}/tools/completion)
  set(zsh_folder site-functions)
  if(SBD_PACKAGE)
    set(zsh_folder vendor-completions)
  endif()
  install(FILES ${completion}/sbd.bash RENAME sbd COMPONENT tools
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${completion}/_sbd COMPONENT tools
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_folder})
  install(FILES ${completion}/sbd.fish COMPONENT tools
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
