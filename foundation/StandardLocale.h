#pragma once

#include <locale>
#include <string>

/// A locale of the standard library, with the name under which the platform knows it.
struct StandardLocale {
    std::locale locale; ///< the locale itself
    std::string name;   ///< can be longer than the one that was asked for
};

/// Makes the standard locale of a name, for all categories; the empty name stands for the user's
/// default. A name that the platform does not know raises std::runtime_error "bad locale name".
///
/// This is the one place that knows whether the standard library has named locales. Where it has
/// none, the C run time says which names there are, and the locale is the classic one; what
/// `MLocale` puts on top of it makes numbers right.
StandardLocale MakeStandardLocale(const std::string& name);
