#include "viewer/showing/page/TimelinePage.h"

namespace
{

/// What the build makes of the sources in page/.
constexpr std::string_view page =
#include <TimelinePage.inc>
    ;

constexpr std::string_view placeOfTrace = "@TRACE@";

/// A "<" stands in texts only, and could end the script that the trace is part of.
void AppendForPage(std::string& text, std::string_view json)
{
    for (std::size_t bracket; (bracket = json.find('<')) != std::string_view::npos;) {
        text.append(json.substr(0, bracket)).append("\\u003c");
        json.remove_prefix(bracket + 1);
    }
    text += json;
}

} // namespace

std::string TimelinePage::Compose(std::string_view trace)
{
    const std::size_t place = page.find(placeOfTrace);
    std::string text;
    text.reserve(page.size() + trace.size());
    text += page.substr(0, place);
    AppendForPage(text, trace);
    text += page.substr(place + placeOfTrace.size());
    return text;
}
