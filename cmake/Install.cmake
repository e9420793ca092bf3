# What is installed, and how other projects find it. Paths in the exported files are relative to the
# place of the files themselves, so that a moved prefix keeps working.
include(CMakePackageConfigHelpers)

install(TARGETS kalvista EXPORT kalvistaTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY include/kalvista DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kalvista)
install(EXPORT kalvistaTargets NAMESPACE kalvista:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/kalvistaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kalvistaConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kalvistaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kalvistaConfig.cmake ${PROJECT_BINARY_DIR}/kalvistaConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

file(RELATIVE_PATH prefix_from_pkgconfig
  /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
# What a program needs besides when the library is a part of it, and its linker knows no C++.
set(private_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER private_libraries INCLUDE REGEX "^(stdc\\+\\+|c\\+\\+|m)$")
list(TRANSFORM private_libraries PREPEND "-l")
list(JOIN private_libraries " " private_libraries)
configure_file(cmake/kalvista.pc.in ${PROJECT_BINARY_DIR}/kalvista.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kalvista.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
