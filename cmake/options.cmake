# The options of every target of the project.
add_library(undula_options INTERFACE)
target_compile_features(undula_options INTERFACE cxx_std_20)
target_compile_options(undula_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  # Results must not depend on whether the machine can fuse a product with a sum.
  -ffp-contract=off)
if(EMSCRIPTEN)
  # Thrown by WebAssembly itself, which costs nothing as long as nothing is thrown. Clang counts among
  # conversions those of a sign, of which there are more with addresses of 32 bits; g++ does not.
  target_compile_options(undula_options INTERFACE -fwasm-exceptions -Wno-sign-conversion)
  target_link_options(undula_options INTERFACE -fwasm-exceptions)
endif()
if(UNDULA_SANITIZE)
  target_compile_options(undula_options INTERFACE
    -fsanitize=${UNDULA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(undula_options INTERFACE -fsanitize=${UNDULA_SANITIZE})
endif()
if(UNDULA_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Clang's sanitizers are linked into the program; libraries find them there when they are loaded.
  target_link_options(undula_options INTERFACE LINKER:-z,undefs)
endif()
if(WIN32)
  target_compile_options(undula_options INTERFACE
    # The control word governs the x87 unit only, so all arithmetic must be done there.
    -mno-sse -mfpmath=387
    # Any instruction may throw: the host turns a fault of the processor into an exception.
    -fnon-call-exceptions
    # The unit reports a fault at its next instruction; the stack must be the same there.
    -maccumulate-outgoing-args -fno-shrink-wrap
    # The built-in root sets errno after a fault, which it does not expect to be thrown.
    -fno-builtin-sqrt)
  # One library catches what another throws, so all must share one run-time library.
  target_link_options(undula_options INTERFACE -shared-libgcc)
endif()
