#pragma once

#include <string_view>

/// The names that a record has where it comes from, each empty where none is known there.
struct RecordNames {
    std::string_view parameter; ///< code of an error, state, message
    std::string_view className;
    std::string_view function;
    std::string_view object;
    std::string_view thread;
};
