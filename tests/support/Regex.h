#pragma once

#include <string>

/// Regular expressions for all tests: the templates take seconds to compile wherever they are used.

/// `text` with each part that matches `expression` replaced, "$1" being its first group.
std::string Replaced(const std::string& text, const std::string& expression, const std::string& by);

/// Nothing but the parts of `text` that match, each as it is or as `form` makes it.
std::string Matches(const std::string& text, const std::string& expression,
                    const std::string& form = "$&");
