#include "xml/MXmlMarkup.h"

void MXmlMarkup::ClearPosition()
{
    MoveTo(0, 0, 0);
}

// Stands on an element if there is a current one, and never on another node.
void MXmlMarkup::MoveTo(std::int32_t parent, std::int32_t main, std::int32_t child)
{
    parentIndex = parent;
    mainIndex = main;
    childIndex = child;
    nodeType = main != 0 ? XmlNodeElement : 0;
    nodeOffset = 0;
    nodeLength = 0;
}

bool MXmlMarkup::FindElement(const wchar_t* name)
{
    const std::int32_t found = FindNextSibling(parentIndex, mainIndex, name);
    if (found == 0)
        return false;
    MoveTo(records[found].parent, found, 0);
    return true;
}

bool MXmlMarkup::EnterElement()
{
    if (mainIndex == 0 || nodeType != XmlNodeElement)
        return false;
    MoveTo(mainIndex, childIndex, 0);
    return true;
}

bool MXmlMarkup::LeaveElement()
{
    if (parentIndex == 0)
        return false;
    MoveTo(records[parentIndex].parent, parentIndex, mainIndex);
    return true;
}

bool MXmlMarkup::SavePosition(const wchar_t* name)
{
    if (!name)
        return false;
    if (childIndex != 0)
        savedPositions.Save(name, childIndex, XmlSavedChild);
    else if (mainIndex != 0)
        savedPositions.Save(name, mainIndex, XmlSavedMain);
    else
        savedPositions.Save(name, parentIndex, 0);
    return true;
}

bool MXmlMarkup::RestorePosition(const wchar_t* name)
{
    const MXmlSavedPosition* saved = name ? savedPositions.Find(name) : nullptr;
    if (!saved)
        return false;
    const std::int32_t above = records[saved->index].parent;
    if ((saved->flags & XmlSavedChild) != 0)
        MoveTo(records[above].parent, above, saved->index);
    else if ((saved->flags & XmlSavedMain) != 0)
        MoveTo(above, saved->index, 0);
    else
        MoveTo(saved->index, 0, 0);
    return true;
}

void MXmlMarkup::PurgeSavedPositions()
{
    savedPositions.Purge(records);
}
