# Builds and installs the plugin against a terminal's SDK by the commands of the integration guide, twice, from two copies
# of the source tree in two folders, and demands the same file bit for bit; then asks what is shipped when it was built,
# what it exports and what it needs.
#   cmake -DSOURCE=FOLDER -DBUILD=FOLDER -DPRINT_BUILD=PROGRAM -P reproducible.cmake
cmake_minimum_required(VERSION 3.25)

# 4 March 2020, 11:37:47: a day that the compiler pads with a blank.
set(ENV{SOURCE_DATE_EPOCH} 1583321867)
set(MOMENT "2020-03-04T11:37:47")
set(ENV{CCACHE_DISABLE} 1)
# Where the SDK of this test looks for the platform.
set(ENV{PLATFORM_LIBRARIES} "${BUILD}/lib")
set(ENV{PLATFORM_HEADERS} "${SOURCE}/platform")

file(STRINGS "${SOURCE}/docs/integration.md" commands REGEX "^    cmake ")
list(LENGTH commands count)
if(NOT count EQUAL 3)
  message(FATAL_ERROR "The guide has ${count} commands, not one each to configure, build and install")
endif()

set(scratch "${BUILD}/reproducible")
file(REMOVE_RECURSE "${scratch}")
foreach(name IN ITEMS first "second place")
  set(tree "${scratch}/${name}")
  file(COPY "${SOURCE}/CMakeLists.txt" "${SOURCE}/CMakePresets.json" "${SOURCE}/cmake" "${SOURCE}/src"
    "${SOURCE}/cashservice" DESTINATION "${tree}")
  foreach(command IN LISTS commands)
    separate_arguments(command UNIX_COMMAND "${command}")
    # What the guide leaves to its reader.
    list(TRANSFORM command REPLACE "^cmake$" "${CMAKE_COMMAND}")
    list(TRANSFORM command REPLACE "^-DTerminalPlatform_DIR=\\.\\.\\.$"
      "-DTerminalPlatform_DIR=${SOURCE}/tests/plugin/package")
    list(TRANSFORM command REPLACE "^\\.\\.\\.$" "installed")
    execute_process(COMMAND ${command} WORKING_DIRECTORY "${tree}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  file(SHA256 "${tree}/installed/plugins/libparkomatplugin.so" sum)
  list(APPEND sums ${sum})
endforeach()

list(REMOVE_DUPLICATES sums)
list(LENGTH sums files)
if(NOT files EQUAL 1)
  message(FATAL_ERROR "Two builds of one source differ: ${sums}")
endif()
set(ENV{LD_LIBRARY_PATH} "${BUILD}/lib")
execute_process(
  COMMAND "${PRINT_BUILD}" "${scratch}/first/installed/plugins/libparkomatplugin.so"
  OUTPUT_VARIABLE moment OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT moment STREQUAL MOMENT)
  message(FATAL_ERROR "The plugin says that it was built at \"${moment}\", it was at ${MOMENT}")
endif()
execute_process(
  COMMAND nm -D --defined-only --format=just-symbols "${scratch}/first/installed/plugins/libparkomatplugin.so"
  OUTPUT_VARIABLE exported OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT exported STREQUAL "qt_plugin_instance\nqt_plugin_query_metadata")
  message(FATAL_ERROR "The plugin exports more than Qt's two entry points:\n${exported}")
endif()
# Its status is 1 where it names some.
execute_process(
  COMMAND ldd -u "${scratch}/first/installed/plugins/libparkomatplugin.so" OUTPUT_VARIABLE unused
  OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT unused STREQUAL "")
  message(FATAL_ERROR "The plugin needs libraries that it does not use:\n${unused}")
endif()
file(REMOVE_RECURSE "${scratch}")
message("${sums}")
