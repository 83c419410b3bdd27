#pragma once

#include <functional>

class MFilerTaggedPair;
class MString;

/// Files or reads what an object consists of, in the group that has been opened for it, and answers
/// whether that worked.
typedef std::function<bool(MFilerTaggedPair& filer)> FiledBody;

/// The form in which a pair of filers keeps an object that has groups of its own.
enum class FiledForm {
    Group,   ///< a group under the object's tag
    OneText, ///< a text under the tag, since groups of one name are one key in the registry
    None     ///< none: one of the two is a registry's and the other is not
};

/// The form that fits both filers of the pair.
FiledForm FiledFormFor(const MFilerTaggedPair& filer);

/// Files an object under the tag. As one text it is the document with a group `kind` that an
/// `MOutFilerTaggedXml` writes for it. The group is closed in either case; where it could not be
/// opened, the body is not called.
bool WriteObject(MFilerTaggedPair& filer, const MString& tag, const wchar_t* kind,
                 const FiledBody& body);

/// Reads an object under the tag, likewise.
bool ReadObject(MFilerTaggedPair& filer, const MString& tag, const wchar_t* kind,
                const FiledBody& body);

/// Reads an object from the document with a group `kind`.
bool ReadObject(const MString& documentText, const wchar_t* kind, const FiledBody& body);
