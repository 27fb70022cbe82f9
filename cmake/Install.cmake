# The installed library: headers, CMake package, pkg-config file, language resources. Every path in
# them is relative, so that an installation can be moved as a whole.
include(CMakePackageConfigHelpers)

install(TARGETS kvshare EXPORT KvShareTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")

# Headers that only the library's own sources include; all others are reached from kvshare.h.
set(internal_headers
  data/answerwatch.h
  data/base64.h
  data/clientrecords.h
  data/decimals.h
  data/driverlibrary.h
  data/named.h
  data/packet.h
  data/packetfields.h
  data/packetlog.h
  data/packetvalues.h
  data/packetxml.h
  data/record.h
  data/recordtable.h
  data/resolver.h
  data/roworder.h
  data/uniqueindex.h
  data/updatesql.h
  data/secrets.h
  data/wireforms.h
  data/wiretexts.h
  database/sqlsplit.h
  database/tablenames.h
  money/words.h
  os/appendfile.h
  os/commandline.h
  os/console.h
  os/imagereader.h
  os/jobfile.h
  os/loadedlibrary.h
  os/mask.h
  os/posix
  os/registrystore.h
  os/regtext.h
  os/sqlite.h
  os/tree.h
  platform/storedvalues.h
  platform/win32rules.h
  rtl/bytepattern.h
  rtl/calendar.h
  rtl/decimal.h
  rtl/digits.h
  rtl/environment.h
  rtl/iniparser.h
  rtl/lines.h
  rtl/longdecimal.h
  rtl/textcursor.h
  rtl/utf8mark.h
  rtl/within.h
  settings/loadentry.h
  settings/placeholders.h
  settings/programlocale.h
  ui/bitmapformat.h
  ui/bitmaprle.h
  ui/consoleform.h
  ui/consoleparts.h
  ui/consoletext.h)
foreach(header IN LISTS internal_headers)
  list(APPEND not_these PATTERN ${header} EXCLUDE)
endforeach()
install(DIRECTORY kvshare/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kvshare"
  FILES_MATCHING PATTERN "*.h" ${not_these})

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
