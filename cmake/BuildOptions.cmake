# What every target is compiled with. Targets get it by linking Parkomat::BuildOptions.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Programs and the plugin find the libraries beside them: a build folder can be moved, and its path is in no file.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

option(PARKOMAT_WERROR "Treat compiler warnings as errors" OFF)
set(PARKOMAT_SANITIZERS "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")
option(PARKOMAT_COVERAGE "Build with coverage counters" OFF)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(parkomat_build_options INTERFACE)
add_library(Parkomat::BuildOptions ALIAS parkomat_build_options)

target_compile_definitions(parkomat_build_options INTERFACE
  QT_NO_KEYWORDS
  # File, line and function stand in every log line's context, in release builds too.
  QT_MESSAGELOGCONTEXT)
target_compile_options(parkomat_build_options INTERFACE
  # The context names src/parkomatcarddata.cpp, wherever the tree was built.
  "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/="
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference -Wformat=2 -Wcast-qual -Wextra-semi
  # Qt's logging macros are called without the arguments that they make optional.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
  $<$<BOOL:${PARKOMAT_WERROR}>:-Werror>)

if(PARKOMAT_SANITIZERS)
  target_compile_options(parkomat_build_options INTERFACE
    "-fsanitize=${PARKOMAT_SANITIZERS}" -fno-sanitize-recover=all -fno-omit-frame-pointer
    # GCC sees null dereferences in the checks that it inserts itself.
    -Wno-null-dereference)
  target_link_options(parkomat_build_options INTERFACE "-fsanitize=${PARKOMAT_SANITIZERS}")
endif()
if(PARKOMAT_COVERAGE)
  target_compile_options(parkomat_build_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(parkomat_build_options INTERFACE --coverage)
endif()
