#include "tests/support/Regex.h"

#include <regex>

std::string Replaced(const std::string& text, const std::string& expression, const std::string& by)
{
    return std::regex_replace(text, std::regex(expression), by);
}

std::string Matches(const std::string& text, const std::string& expression, const std::string& form)
{
    return std::regex_replace(text, std::regex(expression), form,
                              std::regex_constants::format_no_copy);
}
