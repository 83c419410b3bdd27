// The same function traced by the line, by hand, and not at all.

#include <varek/Trace.h>

void Work();

struct ByLine {
    VAREK_TRACED_CLASS(ByLine);

    [[gnu::used]] void Heat(unsigned degrees)
    {
        VAREK_TRACE(degrees);
        Work();
    }
};

const wchar_t className[] = L"ByHand";

struct ByHand {
    [[gnu::used]] void Heat(unsigned degrees)
    {
        static MFlowLocation location(className, L"Heat");
        MFlowScope scope(location.SetObject(this), degrees);
        Work();
    }
};

struct Untraced {
    [[gnu::used]] void Heat(unsigned) { Work(); }
};
