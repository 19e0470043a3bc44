# What is installed, and how another project finds it.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/OstrelSensorManager)
set(OSTREL_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/ostrelSensorManager)

set_target_properties(ostrelSensorManager PROPERTIES EXPORT_NAME SensorManager)
set_target_properties(ostrelExplain PROPERTIES EXPORT_NAME Explain)
set_target_properties(ostrelMonitor PROPERTIES EXPORT_NAME Monitor)
set_target_properties(ostrelScene PROPERTIES EXPORT_NAME SceneFile) # Ostrel::Scene is a class of the runtime
install(TARGETS ostrelSync osgBase merid ostrelBase ostrelDirectSensorNodePool Trovio trovioSlots ostrelSensorManager
    ostrelExplain ostrelScene ostrelMonitor
  EXPORT OstrelSensorManagerTargets
  FILE_SET HEADERS DESTINATION ${OSTREL_INCLUDE_DIR})
get_property(node_targets DIRECTORY nodes PROPERTY BUILDSYSTEM_TARGETS)
foreach(target IN LISTS node_targets)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "MODULE_LIBRARY")
    install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/trovio)
  endif()
endforeach()
install(EXPORT OstrelSensorManagerTargets NAMESPACE Ostrel:: DESTINATION ${package_dir})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/OstrelSensorManagerConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/OstrelSensorManagerConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/OstrelSensorManagerConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/OstrelSensorManagerConfig.cmake
  ${PROJECT_BINARY_DIR}/package/OstrelSensorManagerConfigVersion.cmake DESTINATION ${package_dir})

# pkg-config finds the prefix from where its file stands, so that the tree may be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH OSTREL_PREFIX_FROM_PC /${pkgconfig_dir} /)
foreach(name ostrelSensorManager ostrelSceneFile ostrelMonitor)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${PROJECT_BINARY_DIR}/package/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${name}.pc DESTINATION ${pkgconfig_dir})
endforeach()

install(FILES docs/man/ostrel-host.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES host/completion/ostrel-host DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES docs/man/ostrel-scene.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
# The pages stand to each other as they do in the sources, so that their links lead somewhere.
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN man EXCLUDE)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS)
