# Says in VAREK_TOOLCHAIN what compiles. Standard types pass between a module and its host, so both
# must come from the same toolchain; the package compares its own with that of its user.
include(CheckCXXSymbolExists)
check_cxx_symbol_exists(_UCRT cstdlib VAREK_UCRT)

string(REGEX MATCH "^[0-9]+" major "${CMAKE_CXX_COMPILER_VERSION}")
math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
set(VAREK_TOOLCHAIN "${CMAKE_CXX_COMPILER_ID} ${major} for ${bits}-bit ${CMAKE_SYSTEM_NAME}")
if(VAREK_UCRT)
    string(APPEND VAREK_TOOLCHAIN " with UCRT")
endif()
