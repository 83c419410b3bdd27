# What is installed, and the zip of it.
include(CMakePackageConfigHelpers)

set(package_folder lib/cmake/Varek)

# Outside they have the names by which they are known inside.
set_target_properties(varek PROPERTIES EXPORT_NAME runtime)
foreach(part IN ITEMS framework language module)
    set_target_properties(varek_${part} PROPERTIES EXPORT_NAME ${part})
endforeach()
install(TARGETS varek varek_framework varek_language varek_module
    EXPORT VarekTargets
    OBJECTS DESTINATION lib
    INCLUDES DESTINATION include/varek)
install(FILES $<TARGET_FILE:varek>.debug DESTINATION bin)
if(TARGET varek-log)
    install(TARGETS varek-log)
endif()
install(EXPORT VarekTargets NAMESPACE Varek:: DESTINATION ${package_folder})

install(DIRECTORY diagnostics engine filers foundation module varek xml
    DESTINATION include/varek
    FILES_MATCHING PATTERN "*.h")

configure_package_config_file(
    cmake/VarekConfig.cmake.in ${CMAKE_BINARY_DIR}/VarekConfig.cmake
    INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(
    ${CMAKE_BINARY_DIR}/VarekConfigVersion.cmake
    COMPATIBILITY SameMinorVersion
    ARCH_INDEPENDENT)
install(FILES
    ${CMAKE_BINARY_DIR}/VarekConfig.cmake
    ${CMAKE_BINARY_DIR}/VarekConfigVersion.cmake
    cmake/mingw-w64.cmake
    cmake/VarekModule.cmake
    cmake/VarekToolchain.cmake
    cmake/version.rc.in
    DESTINATION ${package_folder})
install(PROGRAMS cmake/wine-run DESTINATION bin)

# The pages for users, beside the examples that they show. Their links to headers and views lead to
# where these are installed; what is not installed goes without a link.
install(FILES CHANGELOG.md DESTINATION share/doc/varek)
set(rooms "diagnostics|engine|filers|foundation|module|varek|xml")
foreach(name IN ITEMS
        building-on-windows coming-from commands-and-events debugging document-engine face filing host
        own-threads reading-a-dump security tutorial varek-log)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS docs/${name}.md)
    file(READ docs/${name}.md page)
    string(REGEX REPLACE "\\[([^]]*)\\]\\(\\.\\./(tests|tools|viewer|cmake|CMake)[^)]*\\)"
        "\\1" page "${page}")
    string(REGEX REPLACE "\\]\\(\\.\\./((${rooms})/[A-Za-z0-9/]+\\.h)\\)"
        "](../../../../include/varek/\\1)" page "${page}")
    string(REGEX REPLACE "\\]\\(\\.\\./(debugger/[a-z_.]+)\\)"
        "](../../../varek/\\1)" page "${page}")
    file(GENERATE OUTPUT docs/${name}.md CONTENT "${page}")
    install(FILES ${CMAKE_BINARY_DIR}/docs/${name}.md DESTINATION share/doc/varek/docs)
endforeach()
install(DIRECTORY docs/images DESTINATION share/doc/varek/docs)
install(DIRECTORY examples DESTINATION share/doc/varek)

add_custom_target(sdk DEPENDS varek varek_framework varek_module)
if(TARGET varek-log)
    add_dependencies(sdk varek-log)
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME varek-${PROJECT_VERSION}-windows-x86_64)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_PACKAGING_INSTALL_PREFIX /varek)
include(CPack)
