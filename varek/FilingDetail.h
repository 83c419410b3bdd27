#pragma once

#include "varek/Filing.h"

#include <utility>

// What stands behind varek/Filing.h, which includes it.

namespace varek
{

/// Brackets a group.
class FilingGroup
{
public:
    /// Opens it.
    FilingGroup(Filing& filing, const MString& tag) : filing(filing), isThere(filing.Begin(tag)) {}
    FilingGroup(const FilingGroup&) = delete;
    FilingGroup& operator=(const FilingGroup&) = delete;
    ~FilingGroup() { filing.End(); }

    /// Whether there is something to read.
    const bool& IsThere() const { return isThere; }

private:
    Filing& filing;
    const bool isThere;
};

namespace detail
{

typedef void (*DescribeObject)(Filing& filing, void* object);

MString WriteXml(DescribeObject describe, void* object, const wchar_t* rootTag);
Reading ReadXml(const MString& text, DescribeObject describe, void* object, const wchar_t* rootTag);
Reading ReadNothing(DescribeObject describe, void* object);
void WriteFile(const std::wstring& path, const MString& text);
bool ReadFile(const std::wstring& path, MString& text);
void WriteRegistry(const MString& area, DescribeObject describe, void* object);
Reading ReadRegistry(const MString& area, DescribeObject describe, void* object);
MString ItemTag(std::size_t number);

template <class T>
auto IsDescribed(int)
    -> decltype(Describe(std::declval<Filing&>(), std::declval<T&>()), std::true_type());
template <class T>
std::false_type IsDescribed(...);

template <class T>
void DescribeChecked(Filing& filing, T& object)
{
    static_assert(decltype(IsDescribed<T>(0))::value,
                  "there is no description of this type: write void Describe(varek::Filing& "
                  "filing, T& object) in its namespace");
    Describe(filing, object);
}

/// Has the type's own description called.
template <class T>
void DescribeAs(Filing& filing, void* object)
{
    DescribeChecked(filing, *static_cast<T*>(object));
}

// Writing only looks at the object.
template <class T>
void* Writable(const T& object)
{
    return const_cast<T*>(&object);
}

// The number that a filer takes for one of another type.
template <class T, bool isEnum = std::is_enum<T>::value>
struct Carrier {
    typedef T type;
};
template <class T>
struct Carrier<T, true> : Carrier<typename std::underlying_type<T>::type> {
};
template <>
struct Carrier<signed char, false> : Carrier<short> {
};
template <>
struct Carrier<wchar_t, false> : Carrier<unsigned short> {
};
template <>
struct Carrier<long, false> : Carrier<int> {
};
template <>
struct Carrier<unsigned long, false> : Carrier<unsigned> {
};
template <>
struct Carrier<long double, false> : Carrier<double> {
};

// What is in a group, by what the group stands for.

template <class T>
struct Content {
    static void Clear(T&) {}
    static void File(Filing& filing, T& object, bool) { DescribeChecked(filing, object); }
};

template <class T>
struct Content<std::vector<T>> {
    static void Clear(std::vector<T>& items) { items.clear(); }
    static void File(Filing& filing, std::vector<T>& items, bool isThere)
    {
        unsigned count = static_cast<unsigned>(items.size());
        filing(L"Count", count);
        if (!filing.IsReading())
            Write(filing, items);
        else if (isThere)
            Read(filing, items, count);
    }

private:
    static void Write(Filing& filing, std::vector<T>& items)
    {
        for (std::size_t i = 0; i < items.size(); ++i)
            WriteItem(filing, ItemTag(i), items[i]);
    }
    template <class Item>
    static void WriteItem(Filing& filing, const MString& tag, Item& item)
    {
        filing(tag, item);
    }
    static void WriteItem(Filing& filing, const MString& tag, std::vector<bool>::reference item)
    {
        bool value = item;
        filing(tag, value);
    }

    // A count that is wrong ends with the items that there are.
    static void Read(Filing& filing, std::vector<T>& items, unsigned count)
    {
        items.clear();
        for (unsigned i = 0; i < count; ++i) {
            T item = T();
            if (!filing(ItemTag(i), item))
                return;
            items.push_back(std::move(item));
        }
    }
};

template <class Optional, class T>
struct OptionalContent {
    static void Clear(Optional& value) { value = Optional(); }

protected:
    template <class Make>
    static void FileOptional(Filing& filing, Optional& value, bool isThere, Make make)
    {
        bool isSet = static_cast<bool>(value);
        filing(L"IsSet", isSet);
        if (!filing.IsReading()) {
            if (isSet)
                filing(L"Value", *value);
        } else if (isThere) {
            value = isSet ? make() : Optional();
            if (value)
                filing(L"Value", *value);
        }
    }
};

template <class T>
struct Content<std::unique_ptr<T>> : OptionalContent<std::unique_ptr<T>, T> {
    static void File(Filing& filing, std::unique_ptr<T>& value, bool isThere)
    {
        Content::FileOptional(filing, value, isThere, [] { return std::unique_ptr<T>(new T()); });
    }
};

#if __cplusplus >= 201703L
template <class T>
struct Content<std::optional<T>> : OptionalContent<std::optional<T>, T> {
    static void File(Filing& filing, std::optional<T>& value, bool isThere)
    {
        Content::FileOptional(filing, value, isThere, [] { return std::optional<T>(T()); });
    }
};
#endif

inline void Replace(MError& error, MError& fresh)
{
    error = fresh;
}

inline void Replace(MException& exception, MException& fresh)
{
    exception.TakeFrom(fresh);
}

template <class T>
void Clear(T& value, FailureKind)
{
    T none;
    Replace(value, none);
}

template <class T>
void Clear(T& value, GroupKind)
{
    Content<T>::Clear(value);
}

template <class T, class Kind>
void Clear(T& value, Kind)
{
    value = T();
}

} // namespace detail

template <class T>
bool Filing::File(TextView tag, T& value, detail::NumberKind)
{
    typedef typename detail::Carrier<T>::type Number;
    Number number = static_cast<Number>(value);
    const bool filed = FileNumber(ToMString(tag), number);
    if (filed && in)
        value = static_cast<T>(number);
    return filed;
}

template <class T>
bool Filing::File(TextView tag, T& value, detail::TextKind)
{
    return FileText(ToMString(tag), value);
}

template <class T>
bool Filing::File(TextView tag, T& value, detail::FailureKind)
{
    return FileFailure(ToMString(tag), value);
}

template <class T>
bool Filing::File(TextView tag, T& value, detail::GroupKind)
{
    const unsigned before = found;
    const FilingGroup group(*this, ToMString(tag));
    detail::Content<T>::File(*this, value, group.IsThere());
    return in ? found != before : group.IsThere();
}

template <class T>
bool Filing::operator()(TextView tag, T& value)
{
    if (in)
        detail::Clear(value, detail::KindOf<T>());
    return File(tag, value, detail::KindOf<T>());
}

template <class T, class Default>
bool Filing::operator()(TextView tag, T& value, const Default& defaultValue)
{
    static_assert(!decltype(detail::IsDescribed<T>(0))::value,
                  "the defaults of a described type stand in its own description");
    if (in)
        value = static_cast<T>(defaultValue);
    return File(tag, value, detail::KindOf<T>());
}

template <class T>
void Filing::Retired(TextView tag)
{
    if (!in)
        return;
    T value{};
    const bool before = silent;
    silent = true;
    (*this)(tag, value);
    silent = before;
}

template <class T>
MString ToXml(const T& object, const wchar_t* rootTag)
{
    return detail::WriteXml(detail::DescribeAs<T>, detail::Writable(object), rootTag);
}

template <class T>
Reading FromXml(const MString& text, T& object, const wchar_t* rootTag)
{
    return detail::ReadXml(text, detail::DescribeAs<T>, &object, rootTag);
}

template <class T>
void SaveXml(const std::wstring& path, const T& object, const wchar_t* rootTag)
{
    detail::WriteFile(path, ToXml(object, rootTag));
}

template <class T>
Reading LoadXml(const std::wstring& path, T& object, const wchar_t* rootTag)
{
    MString text;
    if (!detail::ReadFile(path, text))
        return detail::ReadNothing(detail::DescribeAs<T>, &object);
    return FromXml(text, object, rootTag);
}

template <class T>
void SaveRegistry(const MString& area, const T& object)
{
    detail::WriteRegistry(area, detail::DescribeAs<T>, detail::Writable(object));
}

template <class T>
Reading LoadRegistry(const MString& area, T& object)
{
    return detail::ReadRegistry(area, detail::DescribeAs<T>, &object);
}

} // namespace varek
