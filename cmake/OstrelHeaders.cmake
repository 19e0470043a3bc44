# Precompiled headers: the standard library's that most sources take, and for tests GoogleTest's. They save a quarter of a
# build from nothing. Sources include what they use all the same, and builds without them show it: those of the second
# compiler, those of ./check --long, and those with a compiler cache, which saves more and could keep nothing that was
# compiled with them.
set(_ostrel_precompiles OFF)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_CXX_COMPILER_LAUNCHER
    AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
  set(_ostrel_precompiles ON)
endif()

if(_ostrel_precompiles)
  # They fit only where all options are the same, -pthread among them.
  target_link_libraries(ostrelBuild INTERFACE Threads::Threads)
endif()

# The compiler no longer knows that precompiled headers are the system's, and warns of how strings are copied there.
# Builds without them keep these warnings.
function(_ostrel_unwarned name)
  foreach(warning array-bounds restrict stringop-overflow stringop-overread)
    target_compile_options(${name} PRIVATE -Wno-${warning})
  endforeach()
endfunction()

# The target is compiled as those are that take its headers.
function(_ostrel_headers name)
  # With more, each source takes longer to load them.
  set(headers algorithm functional map memory optional string vector ${ARGN})
  list(TRANSFORM headers REPLACE "(.+)" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>")
  _ostrel_common(${name} "")
  target_precompile_headers(${name} PRIVATE ${headers})
  _ostrel_unwarned(${name})
endfunction()

if(_ostrel_precompiles)
  set(source ${PROJECT_BINARY_DIR}/Headers.cpp) # a target has one at least
  file(CONFIGURE OUTPUT ${source} CONTENT "int main() {}\n")
  add_library(ostrelLibraryHeaders OBJECT ${source})
  _ostrel_headers(ostrelLibraryHeaders)
endif()
if(_ostrel_precompiles AND OSTREL_BUILD_TESTS)
  add_executable(ostrelTestHeaders EXCLUDE_FROM_ALL ${source}) # compiled as programs are
  _ostrel_headers(ostrelTestHeaders gtest/gtest.h)
  target_link_libraries(ostrelTestHeaders PRIVATE ostrelTestBuild GTest::gtest)
endif()

# ostrel_precompiled(NAME HOLDER): the target takes the headers of ostrelLibraryHeaders or ostrelTestHeaders.
function(ostrel_precompiled name holder)
  if(TARGET ${holder})
    target_precompile_headers(${name} REUSE_FROM ${holder})
    _ostrel_unwarned(${name})
  endif()
endfunction()
