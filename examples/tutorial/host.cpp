#include "Kettle.h"

#include <varek/Errors.h>
#include <varek/Host.h>

#include <future>
#include <iostream>

int main()
{
    varek::Host host(L"kettle.dll");
    std::promise<unsigned> whistled;
    for (const unsigned degrees : {30u, 40u, 30u}) {
        std::wcout << L"Heating by " << degrees << L": ";
        try {
            HeatWater(degrees, [&](unsigned temperature) { whistled.set_value(temperature); });
            std::wcout << L"done\n";
        } catch (MException& exception) {
            std::wcout << varek::FullText(exception) << L"\n";
        }
    }
    std::wcout << L"The whistle goes at " << whistled.get_future().get() << L" degrees\n";
    host.WriteLog("kettle.log");
}
