# What `cmake --install` puts where. Component Runtime is what a head unit needs; Development is what building
# against the library takes on top of it.

set(canbus_include_dir "${CMAKE_INSTALL_INCLUDEDIR}/canbusservice")
set(canbus_host_include_dir "${canbus_include_dir}/hostsdk")
set(canbus_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/CanbusService")
set(CANBUS_INSTALL_ZSHDIR "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" CACHE STRING
  "Where zsh finds completions, below the prefix")

# canbus_install_command(NAME COMPONENT): a command with its manual page and completions.
function(canbus_install_command name component)
  file(RELATIVE_PATH libraries_from_commands "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_commands}")
  install(TARGETS ${name} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${component})
  install(FILES "${PROJECT_SOURCE_DIR}/docs/man/${name}.1"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${component})
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/bash/${name}"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT ${component})
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/zsh/_${name}"
    DESTINATION "${CANBUS_INSTALL_ZSHDIR}" COMPONENT ${component})
endfunction()

install(TARGETS hostsdk EXPORT CanbusServiceTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Development)
install(TARGETS canbusservice EXPORT CanbusServiceTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development
  PUBLIC_HEADER DESTINATION "${canbus_include_dir}" COMPONENT Development)
install(FILES ${CANBUS_HOST_HEADERS} DESTINATION "${canbus_host_include_dir}" COMPONENT Development)

# Found from where they lie, so that the folder as a whole can be moved.
set_target_properties(canbusservice PROPERTIES INSTALL_RPATH "$ORIGIN")
foreach(command canbus-boxsim canbus-monitor)
  if(TARGET ${command})
    canbus_install_command(${command} Runtime)
  endif()
endforeach()
if(TARGET canbus-boxsim)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/scenarios"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/canbusservice" COMPONENT Runtime FILES_MATCHING PATTERN "*.json")
endif()
if(TARGET canbus-headunit)
  canbus_install_command(canbus-headunit Demo)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/desktop/canbus-headunit.desktop"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT Demo)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/desktop/canbus-headunit.svg"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT Demo)
endif()

install(EXPORT CanbusServiceTargets NAMESPACE CanbusService::
  DESTINATION "${canbus_package_dir}" COMPONENT Development)
configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/CanbusServiceConfig.cmake.in" "${PROJECT_BINARY_DIR}/CanbusServiceConfig.cmake"
  INSTALL_DESTINATION "${canbus_package_dir}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/CanbusServiceConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/CanbusServiceConfig.cmake" "${PROJECT_BINARY_DIR}/CanbusServiceConfigVersion.cmake"
  DESTINATION "${canbus_package_dir}" COMPONENT Development)

# pkg-config finds the prefix from where the file lies. -fPIC is what Debian's Qt asks of every compilation.
# An external host SDK brings flags of its own.
set(canbus_pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH canbus_prefix_from_pc "/prefix/${canbus_pc_dir}" "/prefix")
if(CANBUS_HOST_SDK STREQUAL "reference")
  set(canbus_pc_host_cflags " -I\${includedir}/canbusservice/hostsdk")
  set(canbus_pc_host_libs " -l$<TARGET_FILE_BASE_NAME:hostsdk>")
endif()
string(REGEX REPLACE "/$" "" canbus_prefix_from_pc "${canbus_prefix_from_pc}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/canbusservice.pc.in" "${PROJECT_BINARY_DIR}/canbusservice.pc.in" @ONLY)
file(GENERATE OUTPUT "${PROJECT_BINARY_DIR}/canbusservice.pc" INPUT "${PROJECT_BINARY_DIR}/canbusservice.pc.in")
install(FILES "${PROJECT_BINARY_DIR}/canbusservice.pc" DESTINATION "${canbus_pc_dir}" COMPONENT Development)
