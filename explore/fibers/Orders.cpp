#include "explore/fibers/Orders.h"

#include <cstdlib>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// Goes on as two processes: true in the new one, and false in the old one when that has ended
/// well. If it has not, the old one ends too.
bool IsBranch()
{
    const pid_t branch = fork();
    if (branch == 0)
        return true;
    int status = 1;
    waitpid(branch, &status, 0);
    if (status != 0)
        std::_Exit(1);
    return false;
}

} // namespace

EveryOrder::EveryOrder(unsigned preemptions)
    : preemptions(preemptions), preemptionsLeft(preemptions)
{
}

bool EveryOrder::Allows(const Choice& choice, std::size_t candidate) const
{
    return !choice.among[candidate].preempts || choice.preemptionsLeft > 0;
}

std::size_t EveryOrder::Choose(const std::vector<Candidate>& candidates)
{
    if (made == choices.size()) {
        choices.push_back({0, candidates, preemptionsLeft});
        while (!Allows(choices.back(), choices.back().taken))
            ++choices.back().taken;
    }
    const Choice& choice = choices[made++];
    astray = astray || choice.among.size() != candidates.size();
    if (astray)
        return 0;
    preemptionsLeft = choice.preemptionsLeft - candidates[choice.taken].preempts;
    return choice.taken;
}

bool EveryOrder::Next()
{
    made = 0;
    preemptionsLeft = preemptions;
    if (astray) {
        astray = false;
        choices.clear();
        return true;
    }
    for (; !choices.empty(); choices.pop_back()) {
        Choice& last = choices.back();
        while (++last.taken < last.among.size())
            if (Allows(last, last.taken))
                return true;
    }
    return false;
}

// The parent takes the last one itself.
std::size_t EveryOrderOnce::Choose(const std::vector<Candidate>& candidates)
{
    std::size_t allowed = candidates.size();
    while (preemptionsLeft == 0 && candidates[allowed - 1].preempts)
        --allowed;
    std::size_t taken = 0;
    while (taken + 1 < allowed && mayBranch() && !IsBranch())
        ++taken;
    preemptionsLeft -= candidates[taken].preempts;
    return taken;
}

std::size_t RandomOrder::Random(std::size_t below)
{
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<std::size_t>(state >> 20) % below;
}

std::size_t RandomOrder::Choose(const std::vector<Candidate>& candidates)
{
    const std::size_t oneIn = 8;
    std::size_t free = 0;
    while (free < candidates.size() && !candidates[free].preempts)
        ++free;
    return Random(free == 0 || Random(oneIn) == 0 ? candidates.size() : free);
}

ToldOrder::ToldOrder(const std::string& text)
{
    std::istringstream words(text);
    unsigned thread = 0, times = 0;
    for (char by = 0; words >> thread >> by >> times;)
        threads.insert(threads.end(), times, thread);
}

std::size_t ToldOrder::Choose(const std::vector<Candidate>& candidates)
{
    if (made == threads.size())
        return 0;
    const unsigned thread = threads[made++];
    for (std::size_t i = 0; i < candidates.size(); ++i)
        if (candidates[i].thread == thread)
            return i;
    return 0;
}

std::size_t WrittenOrder::Choose(const std::vector<Candidate>& candidates)
{
    const std::size_t chosen = order.Choose(candidates);
    threads.push_back(candidates[chosen].thread);
    return chosen;
}

std::string WrittenOrder::Text() const
{
    std::ostringstream text;
    for (std::size_t at = 0, times; at < threads.size(); at += times) {
        for (times = 1; at + times < threads.size() && threads[at + times] == threads[at];)
            ++times;
        text << (at ? " " : "") << threads[at] << "x" << times;
    }
    return text.str();
}
