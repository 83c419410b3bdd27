#pragma once

#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"

#include <string>

/// What scripted filers have in common: a record of their calls, and the one that is to fail.
class Script
{
public:
    /// Makes the `nth` call from now on answer false, 1 being the next.
    void FailAt(int nth) { countdown = nth; }

    /// Records a call; answers what it is to answer.
    bool Record(const std::wstring& call, const MString& tag = MString())
    {
        calls += call + tag.c_str() + L" ";
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

/// Records groups and texts, and reads a default for every text.
class ScriptedInFiler : public MInFilerTaggedXml
{
public:
    explicit ScriptedInFiler(Script& script)
        : MInFilerTaggedXml(MString(), nullptr, nullptr), script(script)
    {
    }
    bool ReadString(const MString& tag, MString& result, const MString& defaultValue) override
    {
        result = defaultValue;
        return script.Record(L"in:", tag);
    }
    bool BeginGroup(const MString& tag) override { return script.Record(L"in(", tag); }
    bool EndGroup() override { return script.Record(L"in)"); }

private:
    Script& script;
};

class ScriptedOutFiler : public MOutFilerTaggedXml
{
public:
    explicit ScriptedOutFiler(Script& script) : MOutFilerTaggedXml(L"r", nullptr), script(script) {}

    bool WriteString(const MString& tag, const MString& value) override
    {
        return script.Record(std::wstring(L"out:") + tag.c_str() + L"=", value);
    }
    bool BeginGroup(const MString& tag) override { return script.Record(L"out(", tag); }
    bool EndGroup() override { return script.Record(L"out)"); }

private:
    Script& script;
};
