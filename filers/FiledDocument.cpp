#include "filers/FiledDocument.h"

#include "xml/MXmlMarkup.h"

void StartFiledDocument(MXmlMarkup& document, const wchar_t* rootTag)
{
    document.AddNode(XmlNodeInstruction, L"xml", 0);
    document.SetAttribute(document.GetMainIndex(), L"version", L"1.0");
    document.SetAttribute(document.GetMainIndex(), L"encoding", L"UTF-8");
    document.AddElement(rootTag, nullptr, 0);
}

bool LeaveGroup(MXmlMarkup* document)
{
    return document && document->LeaveElement();
}
