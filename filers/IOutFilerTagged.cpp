#include "filers/IOutFilerTagged.h"

IOutFilerTagged::IOutFilerTagged() : locale(MLocale::GetClassicLocale()) {}

IOutFilerTagged::~IOutFilerTagged() = default;
