#include "viewer/model/flows/ErrorFates.h"

#include "viewer/model/records/EventKind.h"

#include <algorithm>
#include <map>

namespace
{

struct Pending {
    const DumpRecord* error;
    bool isChained; // to the one before it
};

struct ThreadErrors {
    std::vector<Pending> pending;
    bool isUnwinding = false; // nothing but leaving since the latest error
};

/// The end of a call, at which the errors of its command become those of the caller.
struct Carry {
    std::int64_t time;
    std::int64_t begin;
    std::int64_t end;
    std::int32_t from;
    std::int32_t to;
};

std::vector<Carry> CarriesOf(const std::vector<Flow>& flows)
{
    std::vector<Carry> carries;
    for (const Flow& flow : flows) {
        if (flow.isCommand && !flow.from.lostEnd)
            carries.push_back({flow.from.end, flow.to.begin, flow.to.end, flow.to.record->threadId,
                               flow.from.record->threadId});
    }
    std::sort(carries.begin(), carries.end(),
              [](const Carry& one, const Carry& other) { return one.time < other.time; });
    return carries;
}

/// Follows the errors of all threads through the records.
class Follower
{
public:
    explicit Follower(std::unordered_map<const DumpRecord*, const DumpRecord*>& partners)
        : partners(partners)
    {
    }

    void Take(const DumpRecord& record)
    {
        if (record.threadId != latestThread || !latest) {
            latestThread = record.threadId;
            latest = &threads[record.threadId];
        }
        ThreadErrors& thread = *latest;
        if (ErrorFates::IsRaised(record.kind)) {
            thread.pending.push_back({&record, thread.isUnwinding});
            thread.isUnwinding = true;
        } else if (record.kind == EventKind::DismissedError) {
            Dismiss(thread, record);
            thread.isUnwinding = false;
        } else if (record.kind != EventKind::ScopePop && record.kind != EventKind::Destruction) {
            thread.isUnwinding = false;
        }
    }

    void Take(const Carry& carry)
    {
        std::vector<Pending>& from = threads[carry.from].pending;
        std::vector<Pending>& to = threads[carry.to].pending;
        const auto stays = [&](const Pending& pending) {
            return pending.error->time < carry.begin || pending.error->time > carry.end;
        };
        const auto carried = std::stable_partition(from.begin(), from.end(), stays);
        to.insert(to.end(), carried, from.end());
        from.erase(carried, from.end());
    }

    std::vector<const DumpRecord*> Left() const
    {
        std::vector<const DumpRecord*> left;
        for (const auto& [id, thread] : threads) {
            for (const Pending& pending : thread.pending)
                left.push_back(pending.error);
        }
        std::sort(left.begin(), left.end()); // as they stand among the records
        return left;
    }

private:
    void Dismiss(ThreadErrors& thread, const DumpRecord& dismissal)
    {
        bool isChained = !thread.pending.empty();
        while (isChained) {
            const Pending last = thread.pending.back();
            thread.pending.pop_back();
            partners[last.error] = &dismissal;
            partners[&dismissal] = last.error;
            isChained = last.isChained && !thread.pending.empty();
        }
    }

    std::unordered_map<const DumpRecord*, const DumpRecord*>& partners;
    std::map<std::int32_t, ThreadErrors> threads;
    std::int32_t latestThread = 0;
    ThreadErrors* latest = nullptr;
};

} // namespace

bool ErrorFates::IsRaised(std::int32_t kind)
{
    return kind == EventKind::RootError || kind == EventKind::CascadeError;
}

ErrorFates::ErrorFates(const std::vector<DumpRecord>& records, const std::vector<Flow>& flows)
{
    Follower follower(partners);
    const std::vector<Carry> carries = CarriesOf(flows);
    auto carry = carries.begin();
    for (const DumpRecord& record : records) {
        for (; carry != carries.end() && carry->time <= record.time; ++carry)
            follower.Take(*carry);
        follower.Take(record);
    }
    undismissed = follower.Left();
}

const DumpRecord* ErrorFates::PartnerOf(const DumpRecord& record) const
{
    const auto partner = partners.find(&record);
    return partner == partners.end() ? nullptr : partner->second;
}
