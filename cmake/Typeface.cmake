# The typeface that PDF files carry, as bytes in the program: a file then looks the same on every machine,
# whatever is installed there.
find_file(OSTRELON_TYPEFACE JetBrainsMono-Medium.ttf
          PATHS /usr/share/fonts/truetype/jetbrains-mono NO_DEFAULT_PATH REQUIRED)
set(OSTRELON_TYPEFACE_SOURCE ${CMAKE_BINARY_DIR}/generated/typeface_data.cpp)
if(NOT EXISTS ${OSTRELON_TYPEFACE_SOURCE} OR ${OSTRELON_TYPEFACE} IS_NEWER_THAN ${OSTRELON_TYPEFACE_SOURCE})
  file(READ ${OSTRELON_TYPEFACE} bytes HEX)
  string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," OSTRELON_TYPEFACE_BYTES "${bytes}")
  configure_file(${CMAKE_SOURCE_DIR}/cmake/typeface_data.cpp.in ${OSTRELON_TYPEFACE_SOURCE} @ONLY)
endif()
