# Cross-compiles for 64-bit Windows; what is built runs under Wine, in a prefix of the build folder.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The posix thread model, because the test framework needs std::mutex.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(wine_run ${CMAKE_CURRENT_LIST_DIR}/wine-run)
# Where it is installed, it also says where the package is.
if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/VarekConfig.cmake)
    set(Varek_DIR ${CMAKE_CURRENT_LIST_DIR})
    cmake_path(SET wine_run NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../../bin/wine-run)
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR ${wine_run} ${CMAKE_BINARY_DIR})
