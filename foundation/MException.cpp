#include "foundation/MException.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/MFlowLocation.h"

#include <iterator>

MException::MException() : chain(new Chain) {}

MException::MException(const MError& error) : MException()
{
    const MString chainText = error.GetChainText();
    if (!chainText.IsEmpty())
        Unfold(chainText);
    AddError(error);
}

MException::MException(const MException& other) : std::exception(other), chain(new Chain)
{
    if (!other.chain)
        return;
    for (const std::unique_ptr<MError>& error : *other.chain)
        if (error)
            AddError(*error);
}

MException::~MException() = default;

void MException::AddError(const MError& error)
{
    if (!chain)
        return;
    std::unique_ptr<MError> clone(dynamic_cast<MError*>(error.Clone()));
    chain->push_back(std::move(clone));
}

std::uint32_t MException::GetErrorCount() const
{
    return chain ? static_cast<std::uint32_t>(chain->size()) : 0;
}

const MError* MException::GetError(std::int32_t index) const
{
    if (index < 0 || static_cast<std::uint32_t>(index) >= GetErrorCount())
        return nullptr;
    return std::next(chain->begin(), index)->get();
}

const MError* MException::GetFailure() const
{
    return chain && !chain->empty() ? chain->back().get() : nullptr;
}

void MException::TakeFrom(MException& temporary)
{
    chain.swap(temporary.chain);
    temporary.chain.reset();
}

void MException::Dismiss(const wchar_t*, const wchar_t*) const {}

void ThrowException(const MException& exception)
{
    throw MException(exception);
}

void MFlowLocation::Throw(MError& error)
{
    const MException exception(error);
    ThrowException(exception);
}

void MFlowLocation::DismissError(const MException& exception)
{
    LogEvent(FlowEventDismissedError, 0, Line());
    exception.Dismiss(className, functionName);
}
