# varek_add_module(NAME sources...)
#
# Builds NAME.dll: a module with the framework, the three exported functions of Varek::Runtime and
# the ordered static start-up already in place. Without sources it is the bare runtime.
function(varek_add_module NAME)
    add_library(${NAME} SHARED
        ${ARGN}
        ${PROJECT_SOURCE_DIR}/module/Runtime.cpp
        ${PROJECT_SOURCE_DIR}/module/DllMain.cpp)
    target_link_libraries(${NAME} PRIVATE varek_framework varek_warnings)
    target_compile_definitions(${NAME} PRIVATE VAREK_BUILDING_MODULE)
    set_target_properties(${NAME} PROPERTIES PREFIX "")
endfunction()
