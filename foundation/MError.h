#pragma once

#include "foundation/MDynObject.h"
#include "foundation/MString.h"

#include <cstdint>
#include <map>
#include <type_traits>

class MFilerTaggedPair;

/// The one description of a failure: a Code that says where and what, and named parameters, text to
/// text, with the details.
///
/// A Code reads class, point, function, colon, short code, as in `MEngineThread.Start:BeginThread`;
/// code that reacts to a particular failure searches it. An error is a value: it is built on the
/// stack by `MFlowLocation::RaiseRootError`, filled, thrown by `MFlowLocation::Throw` inside an
/// `MException`, which keeps a clone, and dies. Thrown by itself it would pass for a crash. It
/// belongs to one thread at a time. Allocation failures leave as they come.
class MError : public MDynObject
{
    template <class Number>
    using FitsSigned =
        std::integral_constant<bool, std::is_integral<Number>::value &&
                                         std::is_signed<Number>::value && sizeof(Number) != 1 &&
                                         sizeof(Number) <= sizeof(std::int32_t)>;

public:
    /// Values by name, in the order of the names.
    typedef std::map<MString, MString, MStringLess> Parameters;

    /// The record of this class.
    static const MDynClass dynClass;

    /// No Code and no parameters.
    MError();

    /// A Code, made by `ComposeErrorCode` as a rule, and no parameters.
    explicit MError(const MString& code);

    /// @{
    /// A deep copy; of a subclass's object it is a plain `MError` (`Clone` keeps the class).
    MError(const MError&) = default;
    MError& operator=(const MError&) = default;
    /// @}

    ~MError() override;

    const MDynClass* GetDynClass() const override;
    MDynObject* Clone() const override;
    MDynObject* CreateInstance() const override;

    /// Reads what `Write` has filed under the tag into this error, which loses what it held. False
    /// when there is none, which leaves it alone, or when there is no Code in it; a list of
    /// parameters that breaks off ends there. `defaultError` is not used.
    virtual bool Read(MFilerTaggedPair& filer, const MString& tagName, const MError& defaultError);

    /// Files the Code and the parameters, in their order, as a group under the tag; in the
    /// registry, as one text value, which holds that as a document. The class is not filed. False
    /// when that fails, with the group of a failed parameter left open, and for a pair with only
    /// one of its two filers in the registry.
    virtual bool Write(MFilerTaggedPair& filer, const MString& tagName) const;

    /// What to show a person: the Code, or "Unspecified error" when there is none.
    virtual MString GetMessageText() const;

    /// Empty unless a subclass has more to say.
    virtual MString GetDetailText() const;

    /// Empty unless a subclass carries a filed exception chain, which an `MException` made from it
    /// then unfolds.
    virtual MString GetChainText() const;

    /// Empty when there is none.
    const MString& GetCode() const { return code; }

    /// Valid as long as the error; an added parameter shows.
    const Parameters& GetParameters() const { return parameters; }

    /// Adds a parameter unless the name is taken: the first value of a name stays.
    void AddParameter(const wchar_t* name, const MString& value);

    /// Adds a number in decimal: a short, an int, an HRESULT.
    void AddParameter(const wchar_t* name, std::int32_t value);

    /// Adds a number in decimal or, when `hexadecimal`, as eight lower-case digits and an "h".
    void AddParameter(const wchar_t* name, std::uint32_t value, bool hexadecimal);

    /// Numbers that would be cut or change their sign do not compile; nor do characters.
    template <class Number>
    typename std::enable_if<std::is_arithmetic<Number>::value && !FitsSigned<Number>::value>::type
    AddParameter(const wchar_t*, Number)
    {
        static_assert(sizeof(Number) == 0,
                      "AddParameter takes signed numbers of up to 32 bits; "
                      "varek::Raise(location, code).With(name, value) takes numbers of any width");
    }

private:
    MString code;
    Parameters parameters;
};

/// The Code of a failure. Each text may be null or empty, and then goes together with the separator
/// in front of it.
MString ComposeErrorCode(const wchar_t* className, const wchar_t* functionName,
                         const wchar_t* code);
