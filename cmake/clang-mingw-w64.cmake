# The same target by the second compiler: clang, with the headers and the linker of mingw-w64. Not
# with clang's own linker, which loses unwind data out of the archives of the other compiler.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_DLLTOOL x86_64-w64-mingw32-dlltool)
set(CMAKE_OBJCOPY x86_64-w64-mingw32-objcopy) # the other one does not separate debug information
# The standard library is built by the other compiler, which keeps a thread's own objects so.
set(CMAKE_CXX_FLAGS_INIT -femulated-tls)
# The other compiler's assembler fills the sections of type information up to their alignment, clang's
# does not, and the linker tells each pair: "duplicate section has different size". It can keep quiet
# only of everything; what else it warns of is heard when the other compiler's programs are linked.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-pthread -Xlinker --no-warnings")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-pthread -Xlinker --no-warnings")
