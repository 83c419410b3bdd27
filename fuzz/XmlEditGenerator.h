#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

/// Makes inputs for the player: a well-formed document, and moves and edits that keep it so.
class XmlEditGenerator
{
public:
    explicit XmlEditGenerator(std::uint32_t seed) : random(seed) {}

    /// A small document and so many operations.
    std::string Input(int operations);

private:
    std::uint32_t Below(std::uint32_t bound)
    {
        return static_cast<std::uint32_t>(random() % bound);
    }
    std::string OneOf(std::initializer_list<const char*> choices);
    std::string Name() { return OneOf({"a", "b", "A", "item", "a2"}); }
    std::string Data();
    std::string StartTag(const std::string& name);
    std::string Element(int depth);
    std::string Content(int depth);
    std::string Operation();
    std::string AddNode();
    static std::string Choice(std::uint32_t choice);

    std::mt19937 random;
};
