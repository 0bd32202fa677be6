# Headers of an installation are spelled as in the tree, "link/ZVBLLIB.h", under one directory of their own.
set(zv32_include ${CMAKE_INSTALL_INCLUDEDIR}/zv32-isp)

# zv32_install_library(TARGET HEADER): one of the two libraries with its C interface.
function(zv32_install_library target header)
  get_filename_component(folder ${header} DIRECTORY)
  install(TARGETS ${target} EXPORT zvbl LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} INCLUDES DESTINATION ${zv32_include})
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${zv32_include}/${folder})
endfunction()
