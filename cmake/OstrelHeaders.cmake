# The standard library's headers that most sources take, and for tests GoogleTest's, are read once for all: that is a
# quarter of a build from nothing, and more of the tests'. Sources include what they use all the same; builds of the
# second compiler take it from there. So do builds with a compiler cache, which gains more and would keep nothing.
set(_ostrel_reads_once OFF)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(_ostrel_reads_once ON)
endif()

if(_ostrel_reads_once)
  # Of headers that were read before, the compiler no longer knows that they are the system's, and warns of how strings
  # are copied there. Other builds keep these warnings.
  foreach(warning array-bounds restrict stringop-overflow stringop-overread)
    target_compile_options(ostrelWarnings INTERFACE -Wno-${warning})
  endforeach()
  # Has to be as it was when they were read.
  target_link_libraries(ostrelBuild INTERFACE Threads::Threads)
endif()

# What is compiled as the target is may begin with the headers.
function(_ostrel_headers name)
  set(headers algorithm functional map memory optional string vector ${ARGN}) # more of them take longer to look up
  list(TRANSFORM headers REPLACE "(.+)" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>")
  _ostrel_common(${name} "")
  target_precompile_headers(${name} PRIVATE ${headers})
endfunction()

if(_ostrel_reads_once)
  set(source ${PROJECT_BINARY_DIR}/Headers.cpp) # a target has one at least
  file(CONFIGURE OUTPUT ${source} CONTENT "int main() {}\n")
  add_library(ostrelLibraryHeaders OBJECT ${source})
  _ostrel_headers(ostrelLibraryHeaders)
endif()
if(_ostrel_reads_once AND OSTREL_BUILD_TESTS)
  add_executable(ostrelTestHeaders EXCLUDE_FROM_ALL ${source}) # compiled as programs are
  _ostrel_headers(ostrelTestHeaders gtest/gtest.h)
  target_link_libraries(ostrelTestHeaders PRIVATE ostrelTestBuild GTest::gtest)
endif()

# ostrel_read_once(NAME HEADERS): the target takes ostrelLibraryHeaders or ostrelTestHeaders.
function(ostrel_read_once name headers)
  if(TARGET ${headers})
    target_precompile_headers(${name} REUSE_FROM ${headers})
  endif()
endfunction()
