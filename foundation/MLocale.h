#pragma once

#include "foundation/MString.h"

#include <clocale>
#include <cstdint>
#include <exception>
#include <locale>
#include <memory>
#include <string>

/// How numbers become text and text becomes numbers: one locale under one name, in the form that
/// streams take and in the form that the C run time takes. Numbers are never grouped; the only
/// punctuation they have is the decimal separator.
///
/// The classic instance is what everything filed goes through, so that no text depends on the
/// settings of the machine:
///
///     std::wostringstream text;
///     text.imbue(MLocale::GetClassicLocale().GetStreamLocale());
///     text << 1234567.5;
///
/// Making or copying a locale is slow: keep a copy where numbers are converted often. A locale does
/// not change once it is made, and any number of threads may read it. Allocation failures leave as
/// they come, except from the constructor by name.
class MLocale
{
public:
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    class DecimalSeparatorOnly;

    /// The locale that the platform knows by `name`, as in "German" or "German_Germany.1252"; the
    /// empty name, or null, is the user's default. Whatever goes wrong raises an `MException` with
    /// the Code "MLocale.MLocale:BadCppLocale" and the parameters "name" and "what"; for an unknown
    /// name "what" is "bad locale name".
    explicit MLocale(const char* name);

    /// A locale of its own, asked for by `other`'s name.
    MLocale(const MLocale& other);
    MLocale& operator=(const MLocale&) = delete;

    /// The locale "C". Made while the module starts, and there until it is unloaded.
    static const MLocale& GetClassicLocale();

    /// The name that the platform reports, which can be longer than the one that was asked for.
    const std::string& GetName() const { return localeName; }

    /// For a stream to take on.
    std::locale GetStreamLocale() const { return cppLocale; }

    /// For the locale-taking functions of the C run time; owned by this object.
    _locale_t GetCLocale() const { return cLocale.get(); }

    /// Printf-style text. Empty when the format fails or yields nothing.
    MString FormatText(const wchar_t* format, ...) const;

    /// The number at the start of `text`, behind white space if there is any. Besides decimal
    /// numbers it knows "inf", "infinity" and "nan", all in lower or all in upper case, and the
    /// forms that some run times print, such as "1.#INF" and "-1.#IND00", each with a sign or
    /// without. `end`, unless null, receives where reading stopped, which is `text` when there was
    /// no number; the answer is then 0. Sets `errno` to ERANGE for a number that does not fit, and
    /// answers infinity or 0 for it.
    double ParseDouble(const wchar_t* text, const wchar_t** end) const;

    /// Parses the number at the start of `text` into `value`, which is 0 when there is none. What
    /// follows the number is no failure, nor is a number too large, which gives infinity. False
    /// when there is no number or nowhere to put it.
    bool ToDouble(const MString& text, double* value) const;

    /// The integer at the start of `text`, 0 when there is none.
    std::int32_t ParseInt(const wchar_t* text) const;

private:
    struct CLocaleDeleter {
        typedef _locale_t pointer;
        void operator()(_locale_t locale) const { _free_locale(locale); }
    };
    typedef std::unique_ptr<void, CLocaleDeleter> CLocale;

    void Build(const char* name);
    char DecimalPoint() const;
    const wchar_t* SkipNumber(const wchar_t* text, double* value) const;
    const wchar_t* SkipRunTimeWord(const wchar_t* text, double* value) const;
    [[noreturn]] void RaiseBadCLocale() const;
    [[noreturn]] void RaiseBadCppLocale(const char* name, const std::exception& cause) const;

    std::string localeName;
    CLocale cLocale;
    std::locale cppLocale;
};

/// The punctuation of numbers in a stream: a decimal separator, and no grouping.
class MLocale::DecimalSeparatorOnly : public std::numpunct<wchar_t>
{
public:
    /// With 0 `references` the locale that takes the facet on owns it.
    explicit DecimalSeparatorOnly(wchar_t decimalSeparator, std::size_t references = 0)
        : std::numpunct<wchar_t>(references), decimalSeparator(decimalSeparator)
    {
    }

protected:
    /// @{
    /// What a stream asks for.
    wchar_t do_decimal_point() const override { return decimalSeparator; }
    wchar_t do_thousands_sep() const override { return L'\0'; }
    std::string do_grouping() const override { return std::string(); }
    /// @}

private:
    wchar_t decimalSeparator;
};

/// Replaces those parts of a reported locale name that the platform does not take back by ones that
/// it does. Null counts as the empty name.
std::string NormaliseLocaleName(const char* name);
