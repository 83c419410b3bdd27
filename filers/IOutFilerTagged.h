#pragma once

#include "foundation/MLocale.h"

/// Files typed values by name ("tag"), with nesting. Where they go is the affair of the class
/// behind it: XML text (`MOutFilerTaggedXml`) or the registry (`IOutFilerTaggedRegistry`).
///
///     bool Save(IOutFilerTagged& filer)
///     {
///         return filer.BeginGroup(L"Window") && filer.WriteInt32(L"Left", left) &&
///                filer.WriteBool(L"Open", open) && filer.EndGroup();
///     }
///
/// Everything answers whether it worked; a value that could not be written leaves what is filed as
/// it was. Only exhausted memory and over-long texts leave by exceptions. A tag without text is the
/// empty tag. A filer is used by one thread at a time.
class IOutFilerTagged
{
public:
    virtual ~IOutFilerTagged();
    IOutFilerTagged(const IOutFilerTagged&) = delete;
    IOutFilerTagged& operator=(const IOutFilerTagged&) = delete;

    /// @{
    /// Files `value` under `tag`. False when that fails.
    virtual bool WriteChar(const MString& tag, char value) = 0;
    virtual bool WriteString(const MString& tag, const MString& value) = 0;
    virtual bool WriteDouble(const MString& tag, double value) = 0;
    virtual bool WriteFloat(const MString& tag, float value) = 0;
    virtual bool WriteBool(const MString& tag, bool value) = 0;
    virtual bool WriteByte(const MString& tag, unsigned char value) = 0;
    virtual bool WriteUInt16(const MString& tag, unsigned short value) = 0;
    virtual bool WriteInt16(const MString& tag, short value) = 0;
    virtual bool WriteUInt32(const MString& tag, unsigned int value) = 0;
    virtual bool WriteInt32(const MString& tag, int value) = 0;
    /// @}

    /// Opens a nested object under the tag: what follows goes into it, up to the `EndGroup` that
    /// belongs to it. A group has no type of its own.
    virtual bool BeginGroup(const MString& tag) = 0;

    /// Goes back to what encloses the group. Once for each `BeginGroup` that answered true.
    virtual bool EndGroup() = 0;

    /// Files the content of a whole filed document, given as its text, under the tag. False where
    /// the text is no document, or the filer has no place for one.
    virtual bool WriteDocument(const MString& tag, const MString& text) = 0;

protected:
    /// Takes a copy of the classic locale.
    IOutFilerTagged();

    /// The locale of all numbers that are filed.
    const MLocale locale;
};
