# Compiles through ccache where it is installed, unless another launcher was chosen.
if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(UNDULA_CCACHE ccache DOC "ccache; empty or not found: compile without")
  if(UNDULA_CCACHE)
    # The tests have a precompiled header, which ccache takes on these terms only.
    set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${UNDULA_CCACHE})
  endif()
endif()
