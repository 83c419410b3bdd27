#include "foundation/MError.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/FlowId.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "foundation/MLocale.h"

#include <iomanip>
#include <sstream>

namespace
{

bool IsGiven(const wchar_t* text)
{
    return text && *text;
}

// No machine's settings group or translate digits, and a lack of memory does not cut them short.
std::wostringstream ClassicStream()
{
    std::wostringstream text;
    text.exceptions(std::ios_base::badbit);
    text.imbue(MLocale::GetClassicLocale().GetStreamLocale());
    return text;
}

} // namespace

MError::MError() = default;

MError::MError(const MString& code) : code(code) {}

MError::~MError() = default;

const MDynClass* MError::GetDynClass() const
{
    return &dynClass;
}

MDynObject* MError::Clone() const
{
    return new MError(*this);
}

MDynObject* MError::CreateInstance() const
{
    return new MError;
}

MString MError::GetMessageText() const
{
    return code.IsEmpty() ? MString(L"Unspecified error") : code;
}

MString MError::GetDetailText() const
{
    return MString();
}

MString MError::GetChainText() const
{
    return MString();
}

void MError::AddParameter(const wchar_t* name, const MString& value)
{
    parameters.emplace(name, value);
}

void MError::AddParameter(const wchar_t* name, std::int32_t value)
{
    std::wostringstream text = ClassicStream();
    text << value;
    AddParameter(name, text.str().c_str());
}

void MError::AddParameter(const wchar_t* name, std::uint32_t value, bool hexadecimal)
{
    std::wostringstream text = ClassicStream();
    if (hexadecimal)
        text << std::hex << std::setfill(L'0') << std::setw(8) << value << L'h';
    else
        text << value;
    AddParameter(name, text.str().c_str());
}

MString ComposeErrorCode(const wchar_t* className, const wchar_t* functionName, const wchar_t* code)
{
    MString composed;
    if (IsGiven(className))
        composed += className;
    if (IsGiven(functionName)) {
        if (!composed.IsEmpty())
            composed += L".";
        composed += functionName;
    }
    if (IsGiven(code)) {
        if (!composed.IsEmpty())
            composed += L":";
        composed += code;
    }
    return composed;
}

// A failure stands in the log before its parameters are known.
void MFlowLocation::RaiseRootError(MError& error, const wchar_t* literal)
{
    GetDiagnosticsRegistry()->RegisterErrorName(FlowId(literal), literal);
    LogEvent(FlowEventRootError, FlowId(literal), Line());
    error = MError(ComposeErrorCode(className, functionName, literal));
}
