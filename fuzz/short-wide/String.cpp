#include <string>

static_assert(sizeof(wchar_t) == 2, "to be compiled with -fshort-wchar");

// Elsewhere its members are taken to be in the library, which has them for characters of 32 bits.
template class std::basic_string<wchar_t>;
