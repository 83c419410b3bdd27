#include "viewer/showing/text/ScopeTree.h"

#include "viewer/forms/TextForms.h"
#include "viewer/showing/text/Description.h"

namespace
{

constexpr std::size_t deepestIndent = 40; // deeper ones tell their depth

std::string Indent(std::size_t depth)
{
    if (depth <= deepestIndent)
        return std::string(2 * depth, ' ');
    return std::string(2 * deepestIndent, ' ') + "[" + std::to_string(depth) + "] ";
}

std::string TextOf(const TimelineEntry& entry, const DumpNames& names)
{
    if (!entry.isScope)
        return "- " + Description::Whole(*entry.record, names);
    return Description::PlaceAndObject(*entry.record, names) +
           (entry.lostBegin ? ", entered before" : "") + (entry.lostEnd ? ", not left" : "");
}

} // namespace

std::string ScopeTree::Compose(const Recordings& recordings)
{
    ScopeTree tree;
    for (const Recording& recording : recordings) {
        for (const Timeline& timeline : recording.timelines)
            tree.AddTimeline(timeline, recording);
    }
    return tree.text;
}

void ScopeTree::AddTimeline(const Timeline& timeline, const Recording& recording)
{
    text += text.empty() ? "" : "\n";
    text += "Thread " + Description::Thread(timeline.threadId, recording) + "\n";
    text += TextForms::AlignRight("time", TextForms::timeWidth) +
            TextForms::AlignRight("took", TextForms::timeWidth) + "\n";
    for (const TimelineEntry& entry : timeline.entries)
        AddEntry(entry, recording.dump.names);
}

void ScopeTree::AddEntry(const TimelineEntry& entry, const DumpNames& names)
{
    const std::string took = entry.isScope ? TextForms::Seconds(entry.end - entry.begin) : "";
    text += TextForms::AlignRight(TextForms::Seconds(entry.begin), TextForms::timeWidth);
    text += TextForms::AlignRight(took, TextForms::timeWidth);
    text += "  " + Indent(entry.depth) + TextOf(entry, names) + "\n";
}
