# The one place that says how a library, a program and a test of this project are built.

add_library(vornix_options INTERFACE)
target_compile_options(vornix_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  -ffunction-sections -fdata-sections -fvisibility=hidden)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler sees overlaps in std::string (its bug 105651) and, where it optimizes for size,
  # unset values in std::optional that are not there.
  target_compile_options(vornix_options INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Conversions of signs are part of its -Wconversion, unlike that of the compiler we ship with.
  target_compile_options(vornix_options INTERFACE -Wno-sign-conversion -Wthread-safety)
endif()
target_include_directories(vornix_options INTERFACE "${CMAKE_SOURCE_DIR}")
# The real platform comes as a bundle of objects: what a program does not reach is left out, and what
# only that would need is not asked for.
target_link_options(vornix_options INTERFACE -Wl,--gc-sections)
find_package(Threads REQUIRED)
target_link_libraries(vornix_options INTERFACE Threads::Threads)

if(VORNIX_FUZZ)
  target_compile_options(vornix_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  target_link_options(vornix_options INTERFACE -fsanitize=address,undefined)
endif()

set(VORNIX_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")
if(VORNIX_SANITIZE)
  target_compile_options(vornix_options INTERFACE
    -fsanitize=${VORNIX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(vornix_options INTERFACE -fsanitize=${VORNIX_SANITIZE})
endif()

# Builds of tests save time where they can. What is shipped, and clang-tidy, do without, and show
# which file forgot to include what it needs.
option(VORNIX_PRECOMPILE "Precompile the headers of the standard library" OFF)

# vornix_precompile(NAME KIND other headers): targets of one kind are compiled with the same options and
# share what the first of them precompiled.
function(vornix_precompile name kind)
  if(NOT VORNIX_PRECOMPILE)
    return()
  endif()
  get_property(first GLOBAL PROPERTY VORNIX_PRECOMPILED_BY_${kind})
  if(first)
    target_precompile_headers(${name} REUSE_FROM ${first})
  else()
    target_precompile_headers(${name} PRIVATE <algorithm> <functional> <map> <memory> <mutex>
      <optional> <string> <string_view> <variant> <vector> ${ARGN})
    set_property(GLOBAL PROPERTY VORNIX_PRECOMPILED_BY_${kind} ${name})
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Without it no compiler cache knows what the precompiled header held.
    target_compile_options(${name} PRIVATE -fpch-preprocess)
  else()
    target_compile_options(${name} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
endfunction()

# Where nobody edits and builds again, sources are compiled some at a time: most of a compiler's work is
# reading the same headers. Names in unnamed namespaces must differ within a folder for that.
option(VORNIX_JOIN_SOURCES "Compile several sources of a library at once" OFF)
function(vornix_join_sources name)
  if(VORNIX_JOIN_SOURCES AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Seen from a joined source, an unnamed namespace looks like a header's.
    target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
  endif()
  set_target_properties(${name} PROPERTIES
    UNITY_BUILD ${VORNIX_JOIN_SOURCES} UNITY_BUILD_BATCH_SIZE 6)
endfunction()

# vornix_library(NAME DEPENDS other libraries): every source of the folder, one static library.
# Headers carry the interface; folders named in EXCLUDE are somebody else's. OBJECTS makes it a bundle
# of objects: layers below need what it holds, and an archive would have to stand behind all of them.
function(vornix_library name)
  cmake_parse_arguments(ARG "OBJECTS" "" "DEPENDS;EXCLUDE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  foreach(folder IN LISTS ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "^${CMAKE_CURRENT_SOURCE_DIR}/${folder}/")
  endforeach()
  if(NOT sources)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ARG_DEPENDS})
    return()
  endif()
  set(kind STATIC)
  if(ARG_OBJECTS)
    set(kind OBJECT)
  endif()
  add_library(${name} ${kind} ${sources})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE vornix_options)
  target_include_directories(${name} PUBLIC "$<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}>")
  vornix_join_sources(${name})
  vornix_precompile(${name} LIBRARY)
endfunction()

include(CheckLinkerFlag)
check_linker_flag(CXX -Wl,-z,pack-relative-relocs VORNIX_LINKER_PACKS_RELOCATIONS)

check_linker_flag(CXX -l:libc.so.6 VORNIX_LINKER_TAKES_C_LIBRARY_FIRST)
check_linker_flag(CXX -Wl,-z,noseparate-code VORNIX_LINKER_JOINS_CODE)

# A program that carries its own C++ runtime: loading the shared one costs more than all its work.
function(vornix_lean_program name)
  target_link_libraries(${name} PRIVATE vornix_options)
  target_link_options(${name} PRIVATE -Wl,--as-needed -Wl,-O1
    $<$<BOOL:${VORNIX_LINKER_PACKS_RELOCATIONS}>:-Wl,-z,pack-relative-relocs>
    # Fewer segments to map and to fault in.
    $<$<BOOL:${VORNIX_LINKER_JOINS_CODE}>:-Wl,-z,noseparate-code>
    # Most symbols are the C library's, and the loader searches the libraries in this order.
    $<$<BOOL:${VORNIX_LINKER_TAKES_C_LIBRARY_FIRST}>:-l:libc.so.6>)
  if(NOT VORNIX_SANITIZE)
    target_link_options(${name} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
endfunction()
