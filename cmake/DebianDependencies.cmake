# Run by cpack over the files that it is about to pack: what the libraries and programs need becomes Depends, what only
# a node module needs becomes Recommends, for without it just that node is missing.
find_program(SHLIBDEPS dpkg-shlibdeps REQUIRED)
set(work ${CPACK_TOPLEVEL_DIRECTORY}/dependencies)
file(MAKE_DIRECTORY ${work}/debian)
file(WRITE ${work}/debian/control "Source: ${CPACK_PACKAGE_NAME}\n\nPackage: ${CPACK_PACKAGE_NAME}\nArchitecture: any\n")

file(GLOB_RECURSE files ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*)
list(FILTER files INCLUDE REGEX "/bin/[^/]+$|/lib[^/]+\\.so\\.[0-9.]+$|/trovio-node-[^/]+\\.so$")
set(modules ${files})
list(FILTER modules INCLUDE REGEX "/trovio-node-[^/]+\\.so$")
list(REMOVE_ITEM files ${modules})
set(library_dirs ${files} ${modules})
list(TRANSFORM library_dirs REPLACE "/[^/]+$" "")
list(REMOVE_DUPLICATES library_dirs)
list(TRANSFORM library_dirs PREPEND -l)

# By this folder it knows where the package begins, and so what $ORIGIN means.
file(MAKE_DIRECTORY ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/DEBIAN)
execute_process(COMMAND ${SHLIBDEPS} --ignore-missing-info --warnings=0 -O ${library_dirs} -dDepends ${files} -dRecommends ${modules}
  WORKING_DIRECTORY ${work} OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/DEBIAN)
foreach(kind Depends Recommends)
  string(TOUPPER ${kind} upper)
  if(found MATCHES "shlibs:${kind}=([^\n]*)")
    set(CPACK_DEBIAN_PACKAGE_${upper} ${CMAKE_MATCH_1})
  endif()
endforeach()
