// The same function traced by the line, by hand, and not at all.

#include <varek/Trace.h>

void Work();

struct ByLine {
    VAREK_TRACED_CLASS(ByLine);
    void Heat(unsigned degrees);
};

struct ByHand {
    static const wchar_t className[];
    void Heat(unsigned degrees);
};

struct Untraced {
    void Heat(unsigned degrees);
};

void ByLine::Heat(unsigned degrees)
{
    VAREK_TRACE(degrees);
    Work();
}

const wchar_t ByHand::className[] = L"ByHand";

void ByHand::Heat(unsigned degrees)
{
    static MFlowLocation location(className, L"Heat");
    MFlowScope scope(location.SetObject(this), degrees);
    Work();
}

void Untraced::Heat(unsigned)
{
    Work();
}
