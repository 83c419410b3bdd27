# varek_add_module(NAME sources...)
#
# Builds NAME.dll: a module with the framework, the three exported functions of Varek::Runtime and
# the ordered static start-up already in place. Its resource says of which version it is, 0.0 for a
# project without one, and which SDK of which toolchain it was made with, which hosts compare.
function(varek_add_module NAME)
    add_library(${NAME} SHARED ${ARGN})
    target_link_libraries(${NAME} PRIVATE Varek::module)
    set_target_properties(${NAME} PROPERTIES PREFIX "" LINKER_LANGUAGE CXX)
    set(version ${PROJECT_VERSION})
    if(NOT version)
        set(version 0.0)
    endif()
    string(REPLACE "." "," numbers ${version}.0.0.0)
    string(REGEX MATCH "^[0-9]+,[0-9]+,[0-9]+,[0-9]+" numbers ${numbers})
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/version.rc.in ${NAME}.rc @ONLY)
    # By relative names: the resource compiler passes what it gets to a shell, unquoted.
    add_custom_command(OUTPUT ${NAME}.version.obj
        COMMAND ${CMAKE_RC_COMPILER} -O coff ${NAME}.rc ${NAME}.version.obj
        DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.rc
        WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
        VERBATIM)
    target_sources(${NAME} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.version.obj)
endfunction()
