#include "Kettle.h"

#include <varek/Varek.h>

struct Kettle {
    VAREK_TRACED_CLASS(Kettle);

    // Traced: recorded when it is entered and when it is left, and where it fails.
    void Heat(unsigned degrees)
    {
        VAREK_TRACE(degrees);
        temperature += degrees;
        if (temperature >= boilsAt)
            VAREK_RAISE(L"Boils").With(L"temperature", temperature).Throw();
    }

    unsigned temperature = 20, boilsAt = 100;
};

// How a kettle is filed, in both directions: a name, a value, a default.
void Describe(varek::Filing& filing, Kettle& kettle)
{
    filing(L"BoilsAt", kettle.boilsAt, 100);
}

void HeatWater(unsigned degrees, std::function<void(unsigned)> whistle)
{
    static Kettle kettle;
    static const varek::Reading settings = varek::LoadXml(L"kettle.xml", kettle);
    varek::Call([&] {
        if (kettle.temperature + degrees >= kettle.boilsAt)
            varek::Post([whistle, boilsAt = kettle.boilsAt] { whistle(boilsAt); });
        kettle.Heat(degrees);
    });
}
