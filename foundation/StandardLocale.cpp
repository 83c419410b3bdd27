#include "foundation/StandardLocale.h"

#include <clocale>
#include <memory>
#include <stdexcept>

#ifdef __GLIBCXX__

namespace
{

// The order in which the C run time writes the categories of a mixed name.
const struct {
    int category;
    const char* name;
} categories[] = {
    {LC_COLLATE, "LC_COLLATE"}, {LC_CTYPE, "LC_CTYPE"}, {LC_MONETARY, "LC_MONETARY"},
    {LC_NUMERIC, "LC_NUMERIC"}, {LC_TIME, "LC_TIME"},
};

std::string CategoryName(_locale_t locale, int category)
{
    const char* const name = locale->locinfo->lc_category[category].locale;
    return name ? name : "C";
}

/// The name as setlocale would report it, which is not asked because it speaks for the whole
/// process.
std::string ReportedName(_locale_t locale)
{
    const std::string first = CategoryName(locale, categories[0].category);
    bool mixed = false;
    std::string all;
    for (const auto& entry : categories) {
        const std::string name = CategoryName(locale, entry.category);
        mixed = mixed || name != first;
        all += (all.empty() ? "" : ";") + std::string(entry.name) + "=" + name;
    }
    return mixed ? all : first;
}

} // namespace

StandardLocale MakeStandardLocale(const std::string& name)
{
    const std::unique_ptr<localeinfo_struct, decltype(&_free_locale)> known(
        _create_locale(LC_ALL, name.c_str()), &_free_locale);
    if (!known)
        throw std::runtime_error("bad locale name");
    return {std::locale::classic(), ReportedName(known.get())};
}

#else

StandardLocale MakeStandardLocale(const std::string& name)
{
    const std::locale locale(name);
    return {locale, locale.name()};
}

#endif
