# install_manual_pages(COMPONENT PATTERN): installs the pages of that name, each into its section.
function(install_manual_pages component pattern)
  file(GLOB pages CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${pattern})
  foreach(page ${pages})
    string(REGEX MATCH "[1-8]$" section ${page})
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
  endforeach()
endfunction()
