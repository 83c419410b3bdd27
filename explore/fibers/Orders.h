#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A thread that could go on, by its number.
struct Candidate {
    unsigned thread;
    bool preempts; ///< another has to be held up for it, or its time run out before its turn
};

/// Decides who goes on whenever more than one can.
class Order
{
public:
    virtual ~Order() = default;

    /// One of the candidates, by its place among them. There are at least two.
    virtual std::size_t Choose(const std::vector<Candidate>& candidates) = 0;
};

/// All orders with at most so many preemptions, one after the other.
///
/// A run that comes where its choices did not lead the last time has done something for the first
/// time in this process, such as naming a function; it all begins again then.
class EveryOrder final : public Order
{
public:
    explicit EveryOrder(unsigned preemptions);

    std::size_t Choose(const std::vector<Candidate>& candidates) override;

    /// Goes back to the last choice that could have been another, and takes that. False when there
    /// is none left.
    bool Next();

private:
    struct Choice {
        std::size_t taken;
        std::vector<Candidate> among;
        unsigned preemptionsLeft; ///< before it
    };

    bool Allows(const Choice& choice, std::size_t candidate) const;

    unsigned preemptions;
    std::vector<Choice> choices; ///< of the last run; those that the next run repeats, at its start
    std::size_t made = 0;
    unsigned preemptionsLeft;
    bool astray = false;
};

/// All orders too, each in a process of its own that branches off at its last choice: for what a
/// process does once. The processes end as leaves; the one that began tells what became of them.
/// From when `mayBranch` says no, the rest is left out.
class EveryOrderOnce final : public Order
{
public:
    EveryOrderOnce(unsigned preemptions, std::function<bool()> mayBranch)
        : preemptionsLeft(preemptions), mayBranch(std::move(mayBranch))
    {
    }

    std::size_t Choose(const std::vector<Candidate>& candidates) override;

private:
    unsigned preemptionsLeft;
    std::function<bool()> mayBranch;
};

/// Made up as it goes along, with a preemption at one in so many choices.
class RandomOrder final : public Order
{
public:
    explicit RandomOrder(std::uint64_t seed) : state(seed * 2 + 1) {}

    std::size_t Choose(const std::vector<Candidate>& candidates) override;

private:
    std::size_t Random(std::size_t below);

    std::uint64_t state;
};

/// The order that a text tells: "0x3 1x2" is three choices for thread 0, then two for thread 1.
/// Behind its end whoever is first goes on.
class ToldOrder final : public Order
{
public:
    explicit ToldOrder(const std::string& text);

    std::size_t Choose(const std::vector<Candidate>& candidates) override;

private:
    std::vector<unsigned> threads;
    std::size_t made = 0;
};

/// Writes down what an order chooses.
class WrittenOrder final : public Order
{
public:
    explicit WrittenOrder(Order& order) : order(order) {}

    std::size_t Choose(const std::vector<Candidate>& candidates) override;

    /// As `ToldOrder` reads it.
    std::string Text() const;

private:
    Order& order;
    std::vector<unsigned> threads;
};
