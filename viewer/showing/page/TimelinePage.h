#pragma once

#include <string>
#include <string_view>

/// The timeline of a dump as a page for a browser, in one piece: it loads nothing else.
namespace TimelinePage
{

/// `trace` is what TraceEvents composes.
std::string Compose(std::string_view trace);

} // namespace TimelinePage
