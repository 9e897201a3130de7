# The fuzz targets, each of one source, and what they link.
set(fuzz_targets console frames)
set(libraries_of_console monitor chip)
set(libraries_of_frames monitor chip)
if(TARGET board)
  list(APPEND fuzz_targets captures options)
  set(libraries_of_captures board)
  set(libraries_of_options board)
endif()
