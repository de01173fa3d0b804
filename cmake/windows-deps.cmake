# The header-only libraries of the Windows build, put into
# VANTORO_WINDOWS_DEPS/include by scripts/windows-deps.sh from Debian packages.
# Each is offered as the package the Linux build finds, so the subsystems'
# find_package calls take them unchanged.
set(VANTORO_WINDOWS_DEPS "${CMAKE_BINARY_DIR}/deps" CACHE PATH
    "Folder of the Windows build's header-only libraries (scripts/windows-deps.sh)")
set(_vantoro_include "${VANTORO_WINDOWS_DEPS}/include")
foreach(header nlohmann/json.hpp CLI/CLI.hpp httplib.h)
  if(NOT EXISTS "${_vantoro_include}/${header}")
    message(FATAL_ERROR "${_vantoro_include}/${header} is missing: run "
                        "scripts/windows-deps.sh ${CMAKE_BINARY_DIR} first")
  endif()
endforeach()

# package name, target name, libraries the target needs
function(_vantoro_header_package package target)
  set(dir "${VANTORO_WINDOWS_DEPS}/cmake/${package}")
  file(WRITE "${dir}/${package}Config.cmake"
       "if(NOT TARGET ${target})\n"
       "  add_library(${target} INTERFACE IMPORTED)\n"
       "  set_target_properties(${target} PROPERTIES\n"
       "    INTERFACE_INCLUDE_DIRECTORIES \"${_vantoro_include}\"\n"
       "    INTERFACE_LINK_LIBRARIES \"${ARGN}\")\n"
       "endif()\n")
  set(${package}_DIR "${dir}" CACHE PATH "" FORCE)
endfunction()
_vantoro_header_package(nlohmann_json nlohmann_json::nlohmann_json)
_vantoro_header_package(CLI11 CLI11::CLI11)
# The HTTP server needs the sockets library of Windows.
_vantoro_header_package(httplib httplib::httplib ws2_32)
