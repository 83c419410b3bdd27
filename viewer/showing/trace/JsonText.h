#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Writes JSON to the end of a string. Commas are set as needed, so the parts of an object or array
/// are written one after the other; a key comes before each value of an object.
class JsonText
{
public:
    explicit JsonText(std::string& text) : text(text) {}

    JsonText& Key(std::string_view name);

    /// A string; `value` is UTF-8. It can stand in a page: "<" is written as an escape.
    JsonText& Text(std::string_view value);
    JsonText& Number(std::int64_t value);
    JsonText& Truth(bool value);

    JsonText& BeginObject() { return Begin('{'); }
    JsonText& EndObject() { return End('}'); }
    JsonText& BeginArray() { return Begin('['); }
    JsonText& EndArray() { return End(']'); }

private:
    JsonText& Begin(char bracket);
    JsonText& End(char bracket);
    void Separate();
    void Quote(std::string_view value);

    std::string& text;
    bool needsComma = false;
};
