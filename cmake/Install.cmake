# The installed library: headers, CMake package, pkg-config file, language resources. Every path in
# them is relative, so that an installation can be moved as a whole.
include(CMakePackageConfigHelpers)

install(TARGETS kvshare EXPORT KvShareTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")

# A header whose `#pragma once` follows the line `// Internal header.` is for the library's own
# sources; all others are reached from kvshare.h.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/kvshare"
  "${PROJECT_SOURCE_DIR}/kvshare/*.h")
foreach(header IN LISTS headers)
  file(STRINGS "kvshare/${header}" mark LIMIT_COUNT 1 REGEX "^// Internal header\\.$")
  if(NOT mark)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "kvshare/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kvshare/${folder}")
  endif()
endforeach()

install(DIRECTORY packaging/languages/ DESTINATION "${CMAKE_INSTALL_DATADIR}/kvshare/languages"
  FILES_MATCHING PATTERN "*.lang")

# Initialisation files to copy from: docs/database-profile.md tells where they go.
install(DIRECTORY packaging/samples/ DESTINATION "${CMAKE_INSTALL_DATADIR}/kvshare/samples"
  FILES_MATCHING PATTERN "*.ini")

# Inputs and expected results that a program in any language can test itself with.
install(FILES packaging/conformance/kvshare-conformance.json
  DESTINATION "${CMAKE_INSTALL_DATADIR}/kvshare/conformance")

# find_package(KvShare)
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/KvShare")
install(EXPORT KvShareTargets NAMESPACE KvShare:: DESTINATION "${package_folder}")
configure_package_config_file(cmake/KvShareConfig.cmake.in
  "${PROJECT_BINARY_DIR}/KvShareConfig.cmake"
  INSTALL_DESTINATION "${package_folder}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KvShareConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  cmake/KvShareVersionResource.cmake
  cmake/KvShareVersionResource.cpp.in
  "${PROJECT_BINARY_DIR}/KvShareConfig.cmake"
  "${PROJECT_BINARY_DIR}/KvShareConfigVersion.cmake"
  DESTINATION "${package_folder}")

# pkg-config kvshare
file(RELATIVE_PATH prefix_from_pkgconfig
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/kvshare.pc.in "${PROJECT_BINARY_DIR}/kvshare.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kvshare.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
