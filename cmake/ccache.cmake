# Compiles through ccache where it is installed, unless CMAKE_CXX_COMPILER_LAUNCHER says otherwise.
if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(UNDULA_CCACHE ccache)
  if(UNDULA_CCACHE)
    # Without these ccache compiles anew whatever uses the precompiled header of the tests.
    set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${UNDULA_CCACHE})
  endif()
endif()
