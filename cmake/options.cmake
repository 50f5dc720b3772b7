# What every target of the project is compiled with.
add_library(undula_options INTERFACE)
target_compile_features(undula_options INTERFACE cxx_std_20)
target_compile_options(undula_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  # Results must not depend on whether the machine can fuse a product and a sum.
  -ffp-contract=off)
if(UNDULA_SANITIZE)
  target_compile_options(undula_options INTERFACE
    -fsanitize=${UNDULA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(undula_options INTERFACE -fsanitize=${UNDULA_SANITIZE})
endif()
if(UNDULA_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Clang's sanitizers live in the program; libraries find them there when they are loaded.
  target_link_options(undula_options INTERFACE LINKER:-z,undefs)
endif()
if(WIN32)
  target_compile_options(undula_options INTERFACE
    # The control word governs the x87 unit alone, so all arithmetic is done there.
    -mno-sse -mfpmath=387
    # Any instruction may throw: a fault of the processor does, through a handler of the host's.
    -fnon-call-exceptions
    # The unit reports a fault at its next instruction; the stack is the same there.
    -maccumulate-outgoing-args -fno-shrink-wrap
    # The compiler's own root sets errno after a fault that it does not expect to be thrown.
    -fno-builtin-sqrt)
  # What one library throws another catches, so that they need one run-time library among them.
  target_link_options(undula_options INTERFACE -shared-libgcc)
endif()
if(UNDULA_FUZZ)
  target_compile_options(undula_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
