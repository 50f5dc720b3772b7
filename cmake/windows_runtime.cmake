# Copies the compiler's run-time libraries to where the programs are.
foreach(library libstdc++-6.dll libgcc_s_dw2-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  configure_file(${path} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${library} COPYONLY)
endforeach()
