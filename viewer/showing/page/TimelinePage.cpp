#include "viewer/showing/page/TimelinePage.h"

namespace
{

/// What the build makes of the sources in page/.
constexpr std::string_view page =
#include "TimelinePage.inc"
    ;

constexpr std::string_view placeOfTrace = "@TRACE@";

} // namespace

std::string TimelinePage::Compose(std::string_view trace)
{
    const std::size_t place = page.find(placeOfTrace);
    std::string text;
    text.reserve(page.size() + trace.size());
    text += page.substr(0, place);
    text += trace;
    text += page.substr(place + placeOfTrace.size());
    return text;
}
