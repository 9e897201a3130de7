# Build settings and the flags that targets share.
set(DEBUG_MONITOR_DEVICE "/dev/kmem" CACHE STRING "Memory device that offers the register window")
set(DEBUG_MONITOR_WINDOW "0x40000000" CACHE STRING "Offset of the window in the memory device")
option(DEBUG_MONITOR_STATIC "Link debug-monitor statically" ON)
option(DEBUG_MONITOR_BOARD "Build virtual-board" ON)
option(DEBUG_MONITOR_TESTS "Build the tests" ON)
option(DEBUG_MONITOR_BENCH "Build the programs of ./dev bench" OFF)
option(DEBUG_MONITOR_FUZZ "Build the fuzz targets (Clang)" OFF)
set(DEBUG_MONITOR_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Everything of ours: warnings are errors, includes start at the top folder.
add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(project_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                       -Werror)
target_compile_definitions(project_options INTERFACE _FILE_OFFSET_BITS=64)
if(DEBUG_MONITOR_SANITIZE)
  target_compile_options(project_options INTERFACE -fsanitize=${DEBUG_MONITOR_SANITIZE}
                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(project_options INTERFACE -fsanitize=${DEBUG_MONITOR_SANITIZE})
endif()

# The monitor's own code runs without heap, exceptions, RTTI and static constructors.
add_library(monitor_options INTERFACE)
# Its speed is that of the bus, so it is built for size where that costs nothing.
target_compile_options(monitor_options INTERFACE -fno-exceptions -fno-rtti
                       -fno-asynchronous-unwind-tables $<$<CONFIG:Release>:-O2>)

# Link-time optimisation puts the register accesses into the drivers. The monitor's objects hold
# plain code as well, so that the tests link without it.
add_library(whole_program INTERFACE)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(whole_program_compile_options -flto -ffat-lto-objects)
  target_compile_options(monitor_options INTERFACE ${whole_program_compile_options})
  target_link_options(whole_program INTERFACE -flto=auto -O2)
  add_library(no_whole_program INTERFACE)
  target_link_options(no_whole_program INTERFACE -fno-lto)
else()
  add_library(no_whole_program INTERFACE)
endif()
