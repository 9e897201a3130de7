# The fuzz targets, each built from the source of its name and any listed here, and their libraries.
set(fuzz_targets console console_port frames)
set(libraries_of_console monitor chip)
set(libraries_of_console_port console)
set(sources_of_console_port ${CMAKE_SOURCE_DIR}/fuzz/scripted_kernel.cpp)
set(link_options_of_console_port
    LINKER:--wrap=read,--wrap=write,--wrap=ppoll,--wrap=isatty,--wrap=nanosleep)
set(libraries_of_frames monitor chip)
if(TARGET board)
  list(APPEND fuzz_targets captures options state)
  set(libraries_of_captures board)
  set(libraries_of_options board)
  set(libraries_of_state board_state monitor console)
endif()
