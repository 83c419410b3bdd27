#pragma once

#include "filers/IInFilerTagged.h"
#include "filers/IOutFilerTagged.h"

#include <string>

/// What scripted filers have in common: a record of their calls, and the one that is to fail.
class Script
{
public:
    /// Makes the `nth` call from now on answer false, 1 being the next.
    void FailAt(int nth) { countdown = nth; }

    /// Records a call; answers what it is to answer.
    bool Record(const std::wstring& call)
    {
        calls += call + L" ";
        return countdown == 0 || --countdown != 0;
    }

    std::wstring TakeCalls()
    {
        std::wstring taken;
        taken.swap(calls);
        return taken;
    }

private:
    std::wstring calls;
    int countdown = 0;
};

/// Reads a default for every value.
class ScriptedInFiler : public IInFilerTagged
{
public:
    explicit ScriptedInFiler(Script& script) : script(script) {}

    bool ReadString(const MString& tag, MString& result, const MString& defaultValue) override
    {
        result = defaultValue;
        return script.Record(std::wstring(L"in:") + tag.c_str());
    }
    bool ReadUInt32(const MString&, unsigned int* result, unsigned int defaultValue) override
    {
        *result = defaultValue;
        return true;
    }
    bool ReadChar(const MString&, char*, char) override { return false; }
    bool ReadDouble(const MString&, double*, double) override { return false; }
    bool ReadFloat(const MString&, float*, float) override { return false; }
    bool ReadBool(const MString&, bool*, bool) override { return false; }
    bool ReadByte(const MString&, unsigned char*, unsigned char) override { return false; }
    bool ReadUInt16(const MString&, unsigned short*, unsigned short) override { return false; }
    bool ReadInt16(const MString&, short*, short) override { return false; }
    bool ReadInt32(const MString&, int*, int) override { return false; }
    bool BeginGroup(const MString& tag) override
    {
        return script.Record(std::wstring(L"in(") + tag.c_str());
    }
    bool EndGroup() override { return script.Record(L"in)"); }
    bool ReadDocument(const MString&, MString&) override { return false; }

private:
    Script& script;
};

class ScriptedOutFiler : public IOutFilerTagged
{
public:
    explicit ScriptedOutFiler(Script& script) : script(script) {}

    bool WriteString(const MString& tag, const MString& value) override
    {
        return script.Record(std::wstring(L"out:") + tag.c_str() + L"=" + value.c_str());
    }
    bool WriteUInt32(const MString& tag, unsigned int value) override
    {
        return WriteString(tag, std::to_wstring(value).c_str());
    }
    bool WriteChar(const MString&, char) override { return false; }
    bool WriteDouble(const MString&, double) override { return false; }
    bool WriteFloat(const MString&, float) override { return false; }
    bool WriteBool(const MString&, bool) override { return false; }
    bool WriteByte(const MString&, unsigned char) override { return false; }
    bool WriteUInt16(const MString&, unsigned short) override { return false; }
    bool WriteInt16(const MString&, short) override { return false; }
    bool WriteInt32(const MString&, int) override { return false; }
    bool BeginGroup(const MString& tag) override
    {
        return script.Record(std::wstring(L"out(") + tag.c_str());
    }
    bool EndGroup() override { return script.Record(L"out)"); }
    bool WriteDocument(const MString&, const MString&) override { return false; }

private:
    Script& script;
};
