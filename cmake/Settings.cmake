# What holds for every target: the language, the warnings, the options and the libraries.
option(OSTRELON_SHELL "Build the windowed program (needs Qt 6)" ON)
option(OSTRELON_TESTS "Build the tests" ON)
option(OSTRELON_BENCHMARKS "Build the benchmarks" OFF)
option(OSTRELON_FUZZERS "Build the fuzzers (needs clang)" OFF)
option(OSTRELON_SANITIZE "Address and undefined-behaviour sanitizers" OFF)
option(OSTRELON_SANITIZE_THREAD "Thread sanitizer" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Installing and packaging take what has been built and build nothing.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# A compiler cache, where there is one, serves every build folder and worktree alike.
find_program(OSTRELON_CCACHE ccache)
if(OSTRELON_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${OSTRELON_CCACHE})
endif()

# Short debug information keeps builds small; paths are relative to the root of the project.
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g1")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough -Werror
                    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees uninitialised members and dangling pointers in std::variant and std::optional where
  # there are none (gcc bugs 105562 and 105593).
  add_compile_options(-Wno-maybe-uninitialized -Wno-dangling-pointer -Wno-restrict -Wno-array-bounds
                      -Wno-stringop-overflow -Wno-stringop-overread)
endif()

if(OSTRELON_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(OSTRELON_FUZZERS)
  # All code reports to the fuzzer which branches an input takes.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(OSTRELON_SANITIZE_THREAD)
  add_compile_options(-fsanitize=thread)
  add_link_options(-fsanitize=thread)
endif()

find_package(PkgConfig REQUIRED)
pkg_check_modules(XXHASH REQUIRED IMPORTED_TARGET libxxhash)
pkg_check_modules(HARFBUZZ REQUIRED IMPORTED_TARGET harfbuzz-subset)
find_package(ICU REQUIRED COMPONENTS uc i18n data)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(simdjson REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(ZLIB REQUIRED)
find_package(CLI11 REQUIRED)
find_package(Threads REQUIRED)
