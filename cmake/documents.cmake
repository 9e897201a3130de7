# install_documents(COMPONENT): README, documents and examples, in the folders of the sources, so
# that their links hold. Links to files that are not installed with them become plain text.
function(install_documents component)
  file(GLOB_RECURSE documents CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
       ${CMAKE_SOURCE_DIR}/docs/*.md)
  foreach(document README.md CONTRIBUTING.md ${documents})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
    file(READ ${CMAKE_SOURCE_DIR}/${document} text)
    string(REGEX REPLACE "\\[([^]]*)\\]\\((\\.\\./)*(packaging|tests)/[^)]*\\)" "\\1"
           text "${text}")
    file(WRITE ${CMAKE_BINARY_DIR}/documents/${document} "${text}")
  endforeach()
  install(DIRECTORY ${CMAKE_BINARY_DIR}/documents/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
          COMPONENT ${component})
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
          COMPONENT ${component} USE_SOURCE_PERMISSIONS)
endfunction()
