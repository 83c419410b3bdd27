// The examples of docs/filing.md, as tests.

#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MException.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

struct Window {
    int left = 0;
    bool open = false;
    double zoom = 1;
};

bool Save(const Window& window, IOutFilerTagged& filer)
{
    return filer.BeginGroup(L"Window") && filer.WriteInt32(L"Left", window.left) &&
           filer.WriteBool(L"Open", window.open) && filer.WriteDouble(L"Zoom", window.zoom) &&
           filer.EndGroup();
}

void Load(Window& window, IInFilerTagged& filer)
{
    const Window fresh;
    if (!filer.BeginGroup(L"Window"))
        return;
    filer.ReadInt32(L"Left", &window.left, fresh.left);
    filer.ReadBool(L"Open", &window.open, fresh.open);
    filer.ReadDouble(L"Zoom", &window.zoom, fresh.zoom);
    filer.EndGroup();
}

bool LoadDocument(Window& window, const MString& text)
{
    MInFilerTaggedXml filer(text, L"Settings", nullptr);
    if (!filer.IsOpen())
        return false;
    Load(window, filer);
    return true;
}

MString Document(const Window& window)
{
    MOutFilerTaggedXml filer(L"Settings", nullptr);
    MString text;
    if (Save(window, filer))
        filer.GetDocumentText(&text);
    return text;
}

// One routine for both directions.
class Label
{
public:
    bool File(MFilerTaggedPair& filer)
    {
        const bool reads = filer.in != nullptr;
        return filer.BeginGroup(L"Label") &&
               (reads ? filer.ReadString(L"Text", text, L"none")
                      : filer.WriteString(L"Text", text)) &&
               filer.EndGroup();
    }

    MString text;
};

} // namespace

TEST(FilingExamples, WrittenInOrder)
{
    Window window;
    window.left = 40;
    window.open = true;
    EXPECT_STREQ(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 L"<Settings>\n"
                 L"<Window>\n"
                 L"<Left type=\"int\">40</Left>\n"
                 L"<Open type=\"bool\">1</Open>\n"
                 L"<Zoom type=\"float\">1.000000000000000e+00</Zoom>\n"
                 L"</Window>\n"
                 L"</Settings>\n",
                 Document(window).c_str());
}

TEST(FilingExamples, ReadInOrder)
{
    Window window;
    window.left = 40;
    Window read;
    MInFilerTaggedXml filer(Document(window), L"Settings", nullptr);
    Load(read, filer);
    EXPECT_EQ(40, read.left);
    EXPECT_TRUE(LoadDocument(read, Document(window)));
    EXPECT_FALSE(LoadDocument(read, L"<Settings>"));
}

TEST(FilingExamples, OlderDocumentLacksAValue)
{
    const MString text = L"<Settings><Window><Left type=\"int\">40</Left>"
                         L"<Zoom type=\"float\">2.5</Zoom></Window></Settings>";
    Window window;
    window.open = true;
    MInFilerTaggedXml filer(text, L"Settings", nullptr);
    Load(window, filer);
    EXPECT_EQ(40, window.left);
    EXPECT_FALSE(window.open);
    EXPECT_EQ(2.5, window.zoom);
}

TEST(FilingExamples, UnknownValueBlocksItsGroupOnly)
{
    const MString text = L"<Settings><Window><Colour type=\"int\">7</Colour>"
                         L"<Left type=\"int\">40</Left></Window>"
                         L"<Other><n type=\"int\">1</n></Other></Settings>";
    Window window;
    MInFilerTaggedXml filer(text, L"Settings", nullptr);
    Load(window, filer);
    EXPECT_EQ(0, window.left);
    int number = 0;
    EXPECT_TRUE(filer.BeginGroup(L"Other"));
    EXPECT_TRUE(filer.ReadInt32(L"n", &number, 0));
}

TEST(FilingExamples, RetiredValueIsReadAndForgotten)
{
    MInFilerTaggedXml filer(L"<Window><Colour type=\"int\">7</Colour>"
                            L"<Left type=\"int\">40</Left></Window>",
                            L"Window", nullptr);
    int retired;
    filer.ReadInt32(L"Colour", &retired, 0); // was filed until version 2
    int left = 0;
    EXPECT_TRUE(filer.ReadInt32(L"Left", &left, 0));
    EXPECT_EQ(40, left);
}

TEST(FilingExamples, OneRoutineForBothDirections)
{
    MOutFilerTaggedXml out(L"Labels", nullptr);
    MFilerTaggedPair writer(nullptr, &out);
    Label written;
    written.text = L"top & bottom";
    EXPECT_TRUE(written.File(writer));
    MString text;
    out.GetDocumentText(&text);

    MInFilerTaggedXml in(text, L"Labels", nullptr);
    MFilerTaggedPair reader(&in, nullptr);
    Label read;
    EXPECT_TRUE(read.File(reader));
    EXPECT_STREQ(L"top & bottom", read.text.c_str());
}

TEST(FilingExamples, Registry)
{
    Window window;
    window.zoom = 2.5;
    IOutFilerTaggedRegistry out(L"FilingExample"); // HKEY_CURRENT_USER\Software\Varek\FilingExample
    Save(window, out);

    window.zoom = 1;
    IInFilerTaggedRegistry in(L"FilingExample", false); // changes nothing, whatever is missing
    Load(window, in);
    EXPECT_EQ(2.5, window.zoom);

    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\FilingExample");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
}

TEST(FilingExamples, ChainOfErrors)
{
    MException exception(MError(L"Pump.Drain:RunsDry"));
    exception.AddError(MError(L"Plant.Run:Stopped"));

    MOutFilerTaggedXml out(L"ExceptionChain", nullptr);
    MFilerTaggedPair writer(nullptr, &out);
    MString text;
    if (exception.Write(writer, L"Exception"))
        out.GetDocumentText(&text);

    MInFilerTaggedXml in(text, L"ExceptionChain", nullptr);
    MFilerTaggedPair reader(&in, nullptr);
    MException read;
    read.Read(reader, L"Exception", read);
    EXPECT_EQ(2u, read.GetErrorCount());
    EXPECT_STREQ(L"Plant.Run:Stopped", read.GetError(1)->GetCode().c_str());
}
