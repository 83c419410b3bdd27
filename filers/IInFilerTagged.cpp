#include "filers/IInFilerTagged.h"

IInFilerTagged::IInFilerTagged() : locale(MLocale::GetClassicLocale()) {}

IInFilerTagged::~IInFilerTagged() = default;
