#pragma once

#include "filers/IInFilerTagged.h"
#include "filers/IOutFilerTagged.h"
#include "foundation/MException.h"
#include "varek/Text.h"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#if __cplusplus >= 201703L
#include <optional>
#endif

// Filing a type by describing it once, for both directions and both back ends:
//
//     void Describe(varek::Filing& filing, Settings& settings)
//     {
//         filing(L"Rate", settings.rate, 50); // 50 where there is none
//         filing(L"Names", settings.names);
//     }
//
//     varek::SaveXml(path, settings);
//     const varek::Reading reading = varek::LoadXml(path, settings);
//
// `Describe` stands in the namespace of the type. It may describe numbers, bool, characters,
// enumerations, `MString`, `std::wstring`, other types that are described, vectors and, as optional
// values, `std::unique_ptr` and `std::optional` of all these, and errors and exceptions.
//
// Versions: a value may be added anywhere; documents that lack it give the default. One that is no
// longer wanted becomes `filing.Retired<int>(L"Rate")` in its place. Where that is not enough,
// `Version` tells which description wrote what is read. The order of the others stays.
//
// One object is filed by one thread at a time.

namespace varek
{

namespace detail
{

struct NumberKind {
};
struct TextKind {
};
struct FailureKind {
};
struct GroupKind {
};

template <class T>
using IsText = std::integral_constant<bool, std::is_same<T, MString>::value ||
                                                std::is_same<T, std::wstring>::value>;

template <class T>
using IsFailure = std::integral_constant<bool, std::is_base_of<MError, T>::value ||
                                                   std::is_base_of<MException, T>::value>;

template <class T>
using KindOf = typename std::conditional<
    std::is_arithmetic<T>::value || std::is_enum<T>::value, NumberKind,
    typename std::conditional<
        IsText<T>::value, TextKind,
        typename std::conditional<IsFailure<T>::value, FailureKind, GroupKind>::type>::type>::type;

} // namespace detail

/// What a reading found.
struct Reading {
    bool wasThere = false;        ///< whether there was anything to read
    std::vector<MString> missing; ///< values missing or unreadable, as L"Window/Left"; defaults now

    /// Whether everything that was described has been read.
    bool IsComplete() const { return wasThere && missing.empty(); }
};

/// One filing of an object: what `Describe` is given. It knows the direction; the description need
/// not.
class Filing
{
public:
    /// @{
    /// Reads from a filer, or writes to one, which must stay. Groups that are not there are told by
    /// readers of XML only.
    explicit Filing(IInFilerTagged& in, bool groupsAreTold) : in(&in), groupsAreTold(groupsAreTold)
    {
    }
    explicit Filing(IOutFilerTagged& out) : out(&out) {}
    /// @}

    Filing(const Filing&) = delete;
    Filing& operator=(const Filing&) = delete;

    /// For what only one direction has to do.
    bool IsReading() const { return in != nullptr; }

    /// Files a value. One that cannot be read becomes that of a new object, but a described type is
    /// described all the same, and gets its own defaults. Whether it has been filed.
    template <class T>
    bool operator()(TextView tag, T& value);

    /// Files a value. One that cannot be read becomes `defaultValue`. Whether it has been filed.
    template <class T, class Default>
    bool operator()(TextView tag, T& value, const Default& defaultValue);

    /// Passes over what earlier versions filed here.
    template <class T>
    void Retired(TextView tag);

    /// Files the number of this description, first of all. Answers, when reading, the number of the
    /// one that wrote, 0 for one without; when writing, `current`.
    unsigned Version(unsigned current);

    /// What has been read so far.
    Reading GetReading() const { return {found != 0, missing}; }

    /// Where writing failed first; empty when it did not.
    const MString& GetFailedTag() const { return failedTag; }

private:
    friend class FilingGroup;

    template <class T>
    bool File(TextView tag, T& value, detail::NumberKind);
    template <class T>
    bool File(TextView tag, T& value, detail::TextKind);
    template <class T>
    bool File(TextView tag, T& value, detail::FailureKind);
    template <class T>
    bool File(TextView tag, T& value, detail::GroupKind);

    bool FileNumber(const MString& tag, bool& value);
    bool FileNumber(const MString& tag, char& value);
    bool FileNumber(const MString& tag, unsigned char& value);
    bool FileNumber(const MString& tag, short& value);
    bool FileNumber(const MString& tag, unsigned short& value);
    bool FileNumber(const MString& tag, int& value);
    bool FileNumber(const MString& tag, unsigned& value);
    bool FileNumber(const MString& tag, float& value);
    bool FileNumber(const MString& tag, double& value);
    bool FileNumber(const MString& tag, long long& value);
    bool FileNumber(const MString& tag, unsigned long long& value);
    bool FileText(const MString& tag, MString& value);
    bool FileText(const MString& tag, std::wstring& value);
    bool FileFailure(const MString& tag, MError& error);
    bool FileFailure(const MString& tag, MException& exception);

    template <class T>
    bool FileBy(bool (IInFilerTagged::*read)(const MString&, T*, T),
                bool (IOutFilerTagged::*write)(const MString&, T), const MString& tag, T& value);
    template <class T>
    bool FileAsText(const MString& tag, T& value);
    template <class T>
    bool FileThrough(const MString& tag, T& failure);
    bool Note(const MString& tag, bool filed);
    bool Begin(const MString& tag);
    void End();

    IInFilerTagged* in = nullptr;
    IOutFilerTagged* out = nullptr;
    bool groupsAreTold = true;
    bool silent = false;         // for what may be missing
    unsigned found = 0;          // values, and groups that are told, that were read
    unsigned absent = 0;         // depth in a group that is not there
    std::vector<MString> groups; // open
    std::vector<MString> missing;
    MString failedTag;
};

/// @{
/// The object as the text of a document, and back. `FromXml` raises "varek.FromXml:NotADocument",
/// the object untouched, for a text that is none or has another root; `ToXml`
/// "varek.ToXml:CannotFile" with "tag" when the filer refuses.
template <class T>
MString ToXml(const T& object, const wchar_t* rootTag = L"Settings");
template <class T>
Reading FromXml(const MString& text, T& object, const wchar_t* rootTag = L"Settings");
/// @}

/// Writes the object into a UTF-8 file. The file is there in whole, as it was or as it is now,
/// whatever happens: the text goes into a new file beside it, is flushed, and takes its place.
/// Raises what `ToXml` raises, and "varek.SaveXml:CannotWrite" with "path" and "winErrorCode".
template <class T>
void SaveXml(const std::wstring& path, const T& object, const wchar_t* rootTag = L"Settings");

/// Reads it back. A file that does not exist gives defaults, and is told by `wasThere`. Raises, the
/// object untouched, "varek.LoadXml:CannotRead" with "path" and "winErrorCode" for one that cannot
/// be read, and "varek.FromXml:NotADocument".
template <class T>
Reading LoadXml(const std::wstring& path, T& object, const wchar_t* rootTag = L"Settings");

/// Writes the object into the registry of the current user, under the area, value by value; one
/// that is interrupted leaves some new. Raises "varek.SaveRegistry:CannotFile" with "tag".
template <class T>
void SaveRegistry(const MString& area, const T& object);

/// Reads it back.
template <class T>
Reading LoadRegistry(const MString& area, T& object);

/// @{
/// Errors and exceptions are filed in the form that they have everywhere, so a host reads the chain
/// of a thread that has ended by `FromXml(chain, exception, L"ExceptionChain")`.
void Describe(Filing& filing, MError& error);
void Describe(Filing& filing, MException& exception);
/// @}

} // namespace varek

#include "varek/FilingDetail.h"
