# What a build says about itself, and where its updates come from. A build without a feed and a key
# checks for no updates and says so; docs/releasing.md explains how to make the two.
set(OSTRELON_VERSION "" CACHE STRING "The version, as 1.2.0 or 1.2.0-beta.1; empty for the project's own")
set(OSTRELON_BUILD "" CACHE STRING "The build number shown beside the version")
set(OSTRELON_UPDATE_FEED_URL "" CACHE STRING "The https address of the release feed")
set(OSTRELON_UPDATE_SIGNING_PUBLIC_KEY_X963 "" CACHE STRING
    "The key that releases are signed with: base64 of the 65-byte point")

foreach(option OSTRELON_VERSION OSTRELON_BUILD OSTRELON_UPDATE_FEED_URL OSTRELON_UPDATE_SIGNING_PUBLIC_KEY_X963)
  set(value "${${option}}")
  if(option STREQUAL "OSTRELON_VERSION" AND value STREQUAL "")
    set(value "${PROJECT_VERSION}")
  endif()
  string(REPLACE "\\" "\\\\" text "${value}")
  string(REPLACE "\"" "\\\"" text "${text}")
  set(${option}_TEXT "${text}")
endforeach()
# The file changes only when its content does, so that configuring again builds nothing anew.
configure_file(${CMAKE_CURRENT_SOURCE_DIR}/cmake/build_information.h.in
               ${CMAKE_BINARY_DIR}/generated/build_information.h @ONLY)
