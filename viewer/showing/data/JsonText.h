#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string>
#include <string_view>

/// Writes JSON: the parts of an object or array one after the other, and in an object a key before
/// each value. Texts are UTF-8.
class JsonText
{
public:
    JsonText& Key(std::string_view name)
    {
        writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
        return *this;
    }

    JsonText& Text(std::string_view value)
    {
        writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
        return *this;
    }

    JsonText& Number(std::int64_t value)
    {
        writer.Int64(value);
        return *this;
    }

    JsonText& Truth(bool value)
    {
        writer.Bool(value);
        return *this;
    }

    JsonText& BeginObject()
    {
        writer.StartObject();
        return *this;
    }

    JsonText& EndObject()
    {
        writer.EndObject();
        return *this;
    }

    JsonText& BeginArray()
    {
        writer.StartArray();
        return *this;
    }

    JsonText& EndArray()
    {
        writer.EndArray();
        return *this;
    }

    void Reserve(std::size_t length) { buffer.Reserve(length); }

    std::string Result() const { return std::string(buffer.GetString(), buffer.GetSize()); }

private:
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer{buffer};
};
