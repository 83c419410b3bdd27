// A host of varek.dll without a framework of its own.

#include "module/Runtime.h"

int main()
{
    Varek::Runtime::Shutdown();
}
