# Warnings, sanitizers and the compiler cache, and the one way a folder becomes a library.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Work trees of one repository share the cache: paths are taken relative to the tree.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
endif()

add_library(sparkrig_options INTERFACE)
target_include_directories(sparkrig_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(sparkrig_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror -ffp-contract=off)

if(SPARKRIG_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(SPARKRIG_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# sparkrig_library(NAME LINKS...): the .cpp files of the current folder and of its rooms as the library NAME.
function(sparkrig_library name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC sparkrig_options ${ARGN})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE sparkrig_options ${ARGN})
  endif()
endfunction()
