# What every target of this build shares: the language as the framework means it, and the warnings.

set(CMAKE_CXX_STANDARD 14)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_COMPILE_WARNING_AS_ERROR ON)

# The flags that carry meaning; whoever compiles framework headers needs them too. Both compilers
# know them, and a test holds the built library to what they are for.
#   -fno-delete-null-pointer-checks  operations that accept a null `this` keep their test
#   -fcheck-new                      an allocator that answers null is seen
#   -Wno-deprecated-declarations     std::auto_ptr is part of the module's boundary
# and for clang
#   -fms-extensions                  __try, on Windows
#   -Wno-...-compare, -conversion    it tells that tests of `this` are undefined, and keeps them
add_library(varek_language INTERFACE)
add_library(Varek::language ALIAS varek_language)
target_compile_features(varek_language INTERFACE cxx_std_14)
target_compile_options(varek_language INTERFACE
    "$<$<COMPILE_LANGUAGE:CXX>:-fno-delete-null-pointer-checks;-fcheck-new;-Wno-deprecated-declarations>"
    "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-tautological-undefined-compare;-Wno-undefined-bool-conversion>"
    "$<$<AND:$<PLATFORM_ID:Windows>,$<COMPILE_LANG_AND_ID:CXX,Clang>>:-fms-extensions>")
# On Windows the compiler's run time is linked in, so that what is built imports system DLLs only. The
# same sources make the same file, which a build id names for those who keep its debug information.
if(WIN32)
    target_compile_definitions(varek_language INTERFACE
        _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
    target_link_options(varek_language INTERFACE
        -static LINKER:--no-insert-timestamp LINKER:--build-id)
endif()

# In the framework itself a function-local static stands behind a plain guard. Its users keep theirs.
add_library(varek_plain_guards INTERFACE)
target_compile_options(varek_plain_guards INTERFACE
    "$<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics>")

# What clang warns of beyond the other compiler, and what is meant so here:
#   null this, deprecated             once more as above, since -Wall would take it back
#   sign-conversion                   -Wconversion means the same to both
#   language-extension-token          __try
#   unused-private-field              layouts have fields that nothing reads
#   delete-non-abstract-...           owners hold the concrete type of a scheduler
#   overlength-strings                the page of the viewer is one text
set(clang_warnings -Wno-tautological-undefined-compare -Wno-undefined-bool-conversion
    -Wno-deprecated-declarations -Wno-sign-conversion -Wno-language-extension-token
    -Wno-unused-private-field -Wno-delete-non-abstract-non-virtual-dtor -Wno-overlength-strings)
list(JOIN clang_warnings " " clang_warnings)
add_library(varek_warnings INTERFACE)
target_compile_options(varek_warnings INTERFACE
    "$<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic>"
    "$<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wshadow=local>"
    "$<$<COMPILE_LANGUAGE:CXX>:-Wconversion>"
    "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wthread-safety;-Wthread-safety-beta;SHELL:${clang_warnings}>")
