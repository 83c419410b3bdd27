#include "foundation/MLocale.h"

#include "diagnostics/MFlowLocation.h"
#include "foundation/MError.h"
#include "foundation/StandardLocale.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <limits>

const wchar_t MLocale::className[] = L"MLocale";

namespace
{

const struct {
    const char* found;
    const char* replacement;
} nameRewrites[] = {
    {"Hong Kong S.A.R.", "HKG"},
    {"U.A.E.", "ARE"},
    {"Chinese (Traditional)_Macau S.A.R..950", "ZHM"},
    {"Chinese_Macau S.A.R..950", "ZHM"},
    {"Chinese (Traditional)_Macao S.A.R..950", "ZHM"},
    {"Chinese_Macao S.A.R..950", "ZHM"},
};

const double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

struct NumberWord {
    const wchar_t* text;
    const wchar_t* optionalTail;
    double value;
};

const NumberWord runTimeWords[] = {
    {L"INF", L"", infinity},    {L"NAN", L"", notANumber}, {L"QNAN", L"", notANumber},
    {L"SNAN", L"", notANumber}, {L"IND", L"", notANumber},
};

const NumberWord plainWords[] = {
    {L"inf", L"inity", infinity},
    {L"INF", L"INITY", infinity},
    {L"nan", L"", notANumber},
    {L"NAN", L"", notANumber},
};

/// Answers where the reading of `word` ends, `text` when it does not stand there.
const wchar_t* Skip(const wchar_t* text, const wchar_t* word)
{
    const std::size_t length = std::wcslen(word);
    return std::wcsncmp(text, word, length) == 0 ? text + length : text;
}

/// Multiplies `value` by the first of the words that stands at `text`, and answers where its
/// reading ends; `text` when none does.
template <std::size_t Count>
const wchar_t* SkipWord(const wchar_t* text, const NumberWord (&words)[Count], double* value)
{
    for (const NumberWord& word : words) {
        const wchar_t* const end = Skip(text, word.text);
        if (end == text)
            continue;
        *value *= word.value;
        return Skip(end, word.optionalTail);
    }
    return text;
}

/// Reads a spelled-out number; answers `text` when there is none.
const wchar_t* SkipPlainWord(const wchar_t* text, double* value)
{
    const wchar_t* word = text;
    while (std::iswspace(static_cast<std::wint_t>(*word)))
        ++word;
    double read = *word == L'-' ? -1.0 : 1.0;
    if (*word == L'-' || *word == L'+')
        ++word;
    const wchar_t* const end = SkipWord(word, plainWords, &read);
    if (end == word)
        return text;
    *value = read;
    return end;
}

/// Byte by byte, without a code page.
MString Widen(const char* text)
{
    std::wstring wide;
    for (; *text; ++text)
        wide += static_cast<wchar_t>(static_cast<signed char>(*text));
    return wide.c_str();
}

/// A separator that says when its locale has destroyed it.
class OwnedSeparator : public MLocale::DecimalSeparatorOnly
{
public:
    explicit OwnedSeparator(wchar_t separator) : DecimalSeparatorOnly(separator) {}
    ~OwnedSeparator() override
    {
        if (destroyed)
            *destroyed = true;
    }

    bool* destroyed = nullptr;
};

/// `locale` with `separator`, which it owns. The library's own way to say so leaves it to nobody
/// when memory runs out half-way.
std::locale WithFacet(const std::locale& locale, OwnedSeparator* separator)
{
    bool destroyed = false;
    separator->destroyed = &destroyed;
    try {
        const std::locale made(locale, separator);
        separator->destroyed = nullptr;
        return made;
    } catch (...) {
        if (!destroyed)
            delete separator;
        throw;
    }
}

/// Both failures of a locale belong to its constructor.
MFlowLocation& ConstructorLocation()
{
    static MFlowLocation location(MLocale::className, MLocale::className);
    return location;
}

} // namespace

MLocale::MLocale(const char* name) : cppLocale(std::locale::classic())
{
    if (!name)
        name = "";
    try {
        Build(name);
    } catch (const std::exception& cause) {
        RaiseBadCppLocale(name, cause);
    }
}

MLocale::MLocale(const MLocale& other)
    : localeName(other.localeName), cLocale(_create_locale(LC_ALL, localeName.c_str())),
      cppLocale(other.cppLocale)
{
}

const MLocale& MLocale::GetClassicLocale()
{
    static const MLocale classic("C");
    return classic;
}

void MLocale::Build(const char* name)
{
    const StandardLocale standard = MakeStandardLocale(NormaliseLocaleName(name));
    localeName = NormaliseLocaleName(standard.name.c_str());
    cLocale.reset(_create_locale(LC_ALL, localeName.c_str()));
    if (!cLocale)
        RaiseBadCLocale();
    const wchar_t separator = static_cast<signed char>(DecimalPoint());
    cppLocale = WithFacet(standard.locale, new OwnedSeparator(separator));
}

/// The first byte of the decimal point, as the C run time prints it.
char MLocale::DecimalPoint() const
{
    char text[8] = {};
    _snprintf_l(text, sizeof text - 1, "%.1f", cLocale.get(), 0.5);
    return text[1];
}

void MLocale::RaiseBadCLocale() const
{
    MFlowLocation& location = ConstructorLocation();
    MError error;
    location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"BadCLocale");
    error.AddParameter(L"name", Widen(localeName.c_str()));
    location.Throw(error);
}

void MLocale::RaiseBadCppLocale(const char* name, const std::exception& cause) const
{
    MFlowLocation& location = ConstructorLocation();
    MError error;
    location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"BadCppLocale");
    error.AddParameter(L"name", Widen(name));
    error.AddParameter(L"what", Widen(cause.what()));
    location.Throw(error);
}

MString MLocale::FormatText(const wchar_t* format, ...) const
{
    std::va_list arguments;
    va_start(arguments, format);
    const int length = _vscwprintf_l(format, cLocale.get(), arguments);
    va_end(arguments);

    MString text;
    if (length < 1)
        return text;
    wchar_t* const buffer = text.GetBuffer(length, true);
    va_start(arguments, format);
    _vswprintf_s_l(buffer, static_cast<std::size_t>(length) + 1, format, cLocale.get(), arguments);
    va_end(arguments);
    return text;
}

double MLocale::ParseDouble(const wchar_t* text, const wchar_t** end) const
{
    double value = 0;
    const wchar_t* stop = SkipNumber(text, &value);
    if (stop == text)
        stop = SkipPlainWord(text, &value);
    else if ((value == 1.0 || value == -1.0) && *stop == L'#')
        stop = SkipRunTimeWord(stop, &value);
    if (end)
        *end = stop;
    return value;
}

/// Reads a decimal number; answers `text` when there is none.
const wchar_t* MLocale::SkipNumber(const wchar_t* text, double* value) const
{
    wchar_t* end = nullptr;
    *value = _wcstod_l(text, &end, cLocale.get());
    return end;
}

/// Reads the "#INF" of a number printed as "1.#INF00", with the padding that follows it. Answers
/// `text` when no such word stands there.
const wchar_t* MLocale::SkipRunTimeWord(const wchar_t* text, double* value) const
{
    const wchar_t* const word = text + 1;
    const wchar_t* const end = SkipWord(word, runTimeWords, value);
    if (end == word)
        return text;
    double padding = 0;
    const wchar_t* const paddingEnd = SkipNumber(end, &padding);
    return padding == 0 ? paddingEnd : end;
}

bool MLocale::ToDouble(const MString& text, double* value) const
{
    if (!value)
        return false;
    const wchar_t* const start = text.c_str();
    const wchar_t* end = start;
    errno = 0;
    *value = ParseDouble(start, &end);
    return (errno == 0 || errno == ERANGE) && end != start;
}

std::int32_t MLocale::ParseInt(const wchar_t* text) const
{
    return _wtoi_l(text, cLocale.get());
}

std::string NormaliseLocaleName(const char* name)
{
    std::string result = name ? name : "";
    for (const auto& rewrite : nameRewrites) {
        const std::string found = rewrite.found;
        const std::size_t at = result.find(found);
        if (at != std::string::npos)
            result.replace(at, found.size(), rewrite.replacement);
    }
    return result;
}
