# What every target of the project is compiled with.
add_library(undula_options INTERFACE)
target_compile_options(undula_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  # Results must not depend on whether the machine can fuse a product and a sum.
  -ffp-contract=off)
if(UNDULA_SANITIZE)
  target_compile_options(undula_options INTERFACE
    -fsanitize=${UNDULA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(undula_options INTERFACE -fsanitize=${UNDULA_SANITIZE})
endif()
