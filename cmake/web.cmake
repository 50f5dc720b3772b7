# Building for browsers with Debian's emscripten.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
