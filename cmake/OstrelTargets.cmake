# What every target of this project has in common. Flags are attached to targets, never to directories.

# Programs that can stand at any address are linked so, too.
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

add_library(ostrelWarnings INTERFACE)
target_compile_options(ostrelWarnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety> $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety-beta>)
if(OSTREL_WARNINGS_AS_ERRORS)
  target_compile_options(ostrelWarnings INTERFACE -Werror)
endif()

add_library(ostrelBuild INTERFACE)
target_compile_features(ostrelBuild INTERFACE cxx_std_20)
# Unique symbols would keep every library that holds one loaded for ever, so dlclose could not unload.
target_compile_options(ostrelBuild INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)
# The compiler looks for memory of its own to use again only when it holds half a gigabyte; most sources never need that.
target_compile_options(ostrelBuild INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:--param=ggc-min-heapsize=524288>)
# No path becomes JSON, so no source that reads or writes JSON takes the standard library's header of paths with it.
target_compile_definitions(ostrelBuild INTERFACE JSON_HAS_FILESYSTEM=0)
# Ranks of locks are checked where assertions are.
target_compile_definitions(ostrelBuild INTERFACE $<$<CONFIG:Debug>:OSTREL_CHECK_LOCK_RANKS>)

# Optimised builds are hardened as far as the compiler offers it. Only how our own targets are built: nothing of it
# reaches whoever includes the headers. The sanitizers watch the same places more closely, and stand in its way.
if(NOT OSTREL_SANITIZE)
  include(CheckCXXCompilerFlag)
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "OSTREL_HAS${flag}" offered)
    check_cxx_compiler_flag(${flag} ${offered})
    if(${offered})
      target_compile_options(ostrelBuild INTERFACE $<${optimised}:${flag}>)
    endif()
  endforeach()
  set(fortify 3)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12)
    set(fortify 2)
  endif()
  # First without: some compilers bring a level of their own, and a second one is a warning.
  target_compile_options(ostrelBuild INTERFACE "$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${fortify}>")
  target_compile_definitions(ostrelBuild INTERFACE $<${optimised}:_GLIBCXX_ASSERTIONS>)
  target_link_options(ostrelBuild INTERFACE "$<${optimised}:LINKER:-z,relro,-z,now>")
endif()

if(OSTREL_SANITIZE)
  string(REPLACE ";" "," _sanitizers "${OSTREL_SANITIZE}")
  target_compile_options(ostrelBuild INTERFACE -fsanitize=${_sanitizers} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(ostrelBuild INTERFACE -fsanitize=${_sanitizers})
endif()

# What only tests is compiled without the optimiser, which takes a quarter of the time; what it tests keeps it. Stands
# behind ostrelBuild among what a target links, because the last option of a kind counts.
add_library(ostrelTestBuild INTERFACE)
target_compile_options(ostrelTestBuild INTERFACE
  "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:SHELL:-O0 -U_FORTIFY_SOURCE>")

# ostrelPrograms: what a user runs. ostrelTests: the tests that this build tree takes part in, with what they need.
add_custom_target(ostrelPrograms)
add_custom_target(ostrelTests)

# Programs and libraries find each other relative to where they stand, in the build tree and installed.
function(_ostrel_common name rpath)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:ostrelBuild> $<BUILD_INTERFACE:ostrelWarnings>)
  target_compile_features(${name} PUBLIC cxx_std_20)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON BUILD_RPATH_USE_ORIGIN ON
    INSTALL_RPATH "${rpath}")
endfunction()

include(cmake/OstrelHeaders.cmake)

# ostrel_library(NAME SOURCES a.cpp … [HEADERS a.h …]): a shared library whose headers are included from BASE_DIR.
function(ostrel_library name)
  cmake_parse_arguments(ARG "" "BASE_DIR" "SOURCES;HEADERS" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${ARG_BASE_DIR} FILES ${ARG_HEADERS})
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  # What the headers promise is exported, whatever visibility the builder prefers for the rest.
  if(CMAKE_CXX_VISIBILITY_PRESET)
    set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
  endif()
  _ostrel_common(${name} "$ORIGIN")
  ostrel_precompiled(${name} ostrelLibraryHeaders)
endfunction()

# ostrel_export_only(NAME NAMESPACE …): the library exports what is in these namespaces, and nothing else.
function(ostrel_export_only name)
  set(patterns "")
  foreach(prefix "" vtable?for? VTT?for? construction?vtable?for? typeinfo?for? typeinfo?name?for? guard?variable?for?
      virtual?thunk?to? non-virtual?thunk?to?)
    foreach(namespace IN LISTS ARGN)
      string(APPEND patterns "            ${prefix}${namespace}::*;\n")
    endforeach()
  endforeach()
  # In builds that check the order of locks there is one set of held ranks a thread, whatever library takes the lock.
  foreach(prefix "" TLS?init?function?for? TLS?wrapper?function?for?)
    string(APPEND patterns "            ${prefix}Ostrel::HeldRanks::*;\n")
  endforeach()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/exports.map)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/exports.map.in ${script} @ONLY)
  target_link_options(${name} PRIVATE "LINKER:--version-script=${script}")
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

# ostrel_program(NAME SOURCES …)
function(ostrel_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  _ostrel_common(${name} "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  add_dependencies(ostrelPrograms ${name})
endfunction()

# ostrel_module(TYPE SOURCES …): the node module trovio-node-TYPE.so, loaded on demand.
function(ostrel_module type)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  set(name node${type})
  add_library(${name} MODULE ${ARG_SOURCES})
  _ostrel_common(${name} "$ORIGIN/..")
  set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME trovio-node-${type}
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/trovio CXX_VISIBILITY_PRESET hidden)
  ostrel_precompiled(${name} ostrelLibraryHeaders)
  target_link_libraries(${name} PRIVATE ostrelSensorManager)
  add_dependencies(ostrelPrograms ${name})
endfunction()

# Labels of a test say where it runs:
#   tsan  also under the thread sanitizer, which runs nothing else
#   long  not under the address sanitizer, unless everything runs (OSTREL_LONG)
#   soak  only when everything runs
function(_ostrel_runs_here result)
  set(labels ${ARGN})
  set(runs TRUE)
  if(OSTREL_ONLY_LABEL AND NOT OSTREL_ONLY_LABEL IN_LIST labels)
    set(runs FALSE)
  endif()
  foreach(unwanted ${OSTREL_SKIP_LABEL} soak)
    if(unwanted IN_LIST labels AND NOT OSTREL_LONG)
      set(runs FALSE)
    endif()
  endforeach()
  set(${result} ${runs} PARENT_SCOPE)
endfunction()

# ostrel_test(NAME SOURCES … LIBRARIES … [NEEDS target …] [LABELS …] [TIMEOUT seconds]): a GoogleTest program. Its cases
# carry the preset's name in ctest. NEEDS names what must be built before it runs: programs, modules.
function(ostrel_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;NEEDS;LABELS" ${ARGN})
  _ostrel_runs_here(runs_here ${ARG_LABELS})
  if(NOT runs_here)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  if(OSTREL_SANITIZE)
    math(EXPR ARG_TIMEOUT "5 * ${ARG_TIMEOUT}")
  endif()
  add_executable(${name} ${ARG_SOURCES})
  _ostrel_common(${name} "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  target_link_libraries(${name} PRIVATE ostrelTestBuild ${ARG_LIBRARIES} GTest::gtest_main)
  ostrel_precompiled(${name} ostrelTestHeaders)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  add_dependencies(ostrelTests ${name})
  if(ARG_NEEDS)
    add_dependencies(${name} ${ARG_NEEDS})
  endif()
  set(properties TIMEOUT ${ARG_TIMEOUT})
  if(ARG_LABELS)
    list(JOIN ARG_LABELS "," labels)  # a list would not survive the discovery
    list(APPEND properties LABELS ${labels})
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${OSTREL_TEST_PREFIX}" NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

# ostrel_command_test(NAME COMMAND … [LABELS …] [TIMEOUT seconds] [PROPERTIES key value …]): a test that is any command;
# it has failed when its exit status is not 0.
function(ostrel_command_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "COMMAND;LABELS;PROPERTIES" ${ARGN})
  _ostrel_runs_here(runs_here ${ARG_LABELS})
  if(NOT runs_here)
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  add_test(NAME ${OSTREL_TEST_PREFIX}${name} COMMAND ${ARG_COMMAND})
  set_tests_properties(${OSTREL_TEST_PREFIX}${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}"
    ${ARG_PROPERTIES})
endfunction()

# ostrel_soak(TEST NAME=value …): the same test once more with these settings in its environment, when everything runs.
function(ostrel_soak test)
  if(TARGET ${test})
    ostrel_command_test(${test}.soak COMMAND ${CMAKE_COMMAND} -E env ${ARGN} $<TARGET_FILE:${test}> LABELS soak
      TIMEOUT 1800)
  endif()
endfunction()
