# Debian packages: libsbd0 (libraries), libsbd-dev (to build against them) and sbd-tools (the
# command). `./dev package` configures a build for them, makes them and lets lintian judge them.
if(NOT SBD_PACKAGE)
  return()
endif()
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  message(FATAL_ERROR "Packages are for /usr: configure with -DCMAKE_INSTALL_PREFIX=/usr")
endif()

set(CPACK_PACKAGE_CONTACT "sbd maintainers <sbd@example.org>" CACHE STRING
    "Who maintains the packages")

# ---- Documents that every package has to bring ---------------------------------------------------

set(package_folder ${PROJECT_BINARY_DIR}/packaging)
configure_file(${PROJECT_SOURCE_DIR}/cmake/packaging/changelog.in ${package_folder}/changelog @ONLY)
execute_process(COMMAND ${SBD_GZIP} --best --no-name --force --keep changelog
                WORKING_DIRECTORY ${package_folder} COMMAND_ERROR_IS_FATAL ANY)

foreach(package libsbd${SBD_ABI_VERSION}:runtime libsbd-dev:development sbd-tools:tools)
  string(REGEX MATCH "(.*):(.*)" ignored ${package})
  install(FILES ${package_folder}/changelog.gz ${PROJECT_SOURCE_DIR}/cmake/packaging/copyright
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CMAKE_MATCH_1} COMPONENT ${CMAKE_MATCH_2})
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/cmake/packaging/libsbd.lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME libsbd${SBD_ABI_VERSION}
        COMPONENT runtime)

# ---- Packages ------------------------------------------------------------------------------------

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sbd)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # Each package has its own.
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
    GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(this_library "libsbd${SBD_ABI_VERSION} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libsbd${SBD_ABI_VERSION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# CPack makes its own shlibs with -DGENERATE_SHLIBS for all components or for none.
set(shared_libraries "")
foreach(library libsbd libsbd_c libsbd_host)
  string(APPEND shared_libraries "${library} ${SBD_ABI_VERSION} libsbd${SBD_ABI_VERSION} (>= ${PROJECT_VERSION})\n")
endforeach()
file(WRITE ${package_folder}/shlibs "${shared_libraries}")
file(WRITE ${package_folder}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${package_folder}/shlibs ${package_folder}/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"libraries for System Build Descriptor files
These libraries read, check, query, edit and write System Build Descriptor
files, which describe how the embedded processor stripe of a Veldran device is
set up, and validate every parameter by the rules of the chip.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libsbd-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ${this_library})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"libraries for System Build Descriptor files - development
This package holds what it takes to build programs that read, check, query,
edit and write System Build Descriptor files: headers, static libraries, a
CMake package and files for pkg-config.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME sbd-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS ${this_library})
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
"command-line tool for System Build Descriptor files
The sbd command checks, shows, queries, compares, edits and formats System
Build Descriptor files, which describe how the embedded processor stripe of a
Veldran device is set up.")

include(CPack)
