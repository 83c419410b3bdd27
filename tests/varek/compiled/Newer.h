// What the face has for newer languages only.

#include <varek/Varek.h>

#if __cplusplus >= 201703L
inline void FileNewer(varek::Filing& filing, std::optional<std::vector<double>>& value)
{
    filing(L"Tag", value);
    static MFlowLocation location(L"Class", L"Function");
    if (MString(L"x") == std::wstring_view(L"y"))
        varek::Raise(location, L"Code").With(L"view", std::wstring_view()).Throw();
}
#endif
