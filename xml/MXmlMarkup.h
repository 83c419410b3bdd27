#pragma once

#include "xml/document/MXmlDocumentText.h"
#include "xml/document/MXmlInsertRequest.h"
#include "xml/document/MXmlSavedPositions.h"
#include "xml/index/MXmlElementIndex.h"
#include "xml/scan/MXmlNodeScan.h"
#include "xml/scan/MXmlTokenCursor.h"
#include <string>

/// An XML document as one wide text with an index of its elements.
///
/// The text is the truth: every answer is cut from it, every edit splices it, and it is at all
/// times the document's output. What is not an element (text, comments, CDATA sections,
/// instructions, the doctype) has no record and is scanned again when somebody asks for it.
///
///     MXmlMarkup document;
///     if (document.LoadText(L"<list><item id='1'>first</item></list>") && document.FindElement())
///     {
///         document.EnterElement();
///         while (document.FindElement(L"item"))
///             Use(document.GetAttribute(document.GetMainIndex(), L"id"),
///                 document.GetElementData(document.GetMainIndex()));
///     }
///
/// Position. A caller moves a position through the tree: the level it is on (`GetParentIndex`), the
/// element it stands on (`GetMainIndex`) and that element's current child (`GetChildIndex`), each a
/// record index and 0 for none. Right after `AddNode` it stands on a node that is no element.
///
/// Units and limits. Offsets and lengths count characters (`wchar_t`, on Windows UTF-16 units; a
/// surrogate pair counts two). Offsets are 32-bit signed: a text may have up to `MaxTextLength`
/// characters. `MXmlElementRecord` gives the limits of a single tag. There is no limit on nesting.
///
/// Texts that are passed in end with a zero; a null pointer counts as the empty text where nothing
/// else is said. A record index that names no element is answered with an empty text, or false.
///
/// Failure. Bad input is never an error of the program: a text that is not well-formed is indexed
/// as well as can be, and remains fully usable; operations that cannot be carried out answer false
/// and change nothing. Names and the texts of comments, instructions and declarations are written
/// as they are given, without a check. Only `std::bad_alloc`, and `std::length_error` past
/// `MaxTextLength`, leave as exceptions. Where `LoadText` throws `std::length_error`, and wherever
/// `AddElement`, `AddNode` or `SetAttribute` throws, the document is as before; after any other
/// exception it is fit only for being loaded again or destroyed.
///
/// Threads. None of its own, and no locks: one owner, one thread at a time. Two documents share
/// nothing.
class MXmlMarkup
{
public:
    /// Longest text of a document, in characters.
    static constexpr std::size_t MaxTextLength = MXmlDocumentText::MaxLength;

    /// An empty document. As after loading an empty text, the error text is "Empty document".
    MXmlMarkup();

    MXmlMarkup(const MXmlMarkup&) = delete;
    MXmlMarkup& operator=(const MXmlMarkup&) = delete;

    // The document

    /// Takes a copy of the text and indexes it. Answers 1 if it is well-formed with one root
    /// element, else 0, with the finding in `GetErrorText`. The position is then at the top; saved
    /// positions and record indices from before are void.
    int LoadText(const wchar_t* text);

    /// The whole document. The reference is valid as long as the document; its text changes with
    /// every edit.
    const std::wstring& GetDocumentText() const { return documentText.Characters(); }

    /// The first finding of the last `LoadText` or `ReplaceInnerMarkup`, in words with the offset
    /// it is about, or empty. What concerns the root element replaces other findings.
    const std::wstring& GetErrorText() const { return errorText; }

    /// `XmlDocIgnoreCase` or 0, which is what a new document has.
    std::uint32_t GetDocumentFlags() const { return documentFlags; }

    /// Takes `XmlDocIgnoreCase` from the bits, and nothing else. To be called before loading.
    void SetDocumentFlags(std::uint32_t flags) { documentFlags = flags & XmlDocIgnoreCase; }

    // The position

    /// The element whose children are walked, 0 at the top of the document.
    std::int32_t GetParentIndex() const { return parentIndex; }

    /// The current element, 0 in front of the first of the level.
    std::int32_t GetMainIndex() const { return mainIndex; }

    /// The child on which one was when one last left the current element, 0 for none.
    std::int32_t GetChildIndex() const { return childIndex; }

    /// Type of the current node, `XmlNodeElement` on an element, 0 on nothing.
    std::int32_t GetNodeType() const { return nodeType; }

    /// Place of the current node if it is not an element.
    std::int32_t GetNodeOffset() const { return nodeOffset; }

    /// Length of the current node if it is not an element, otherwise 0.
    std::int32_t GetNodeLength() const { return nodeLength; }

    /// Moves to the next sibling of that name, from the front of the level if the position is on
    /// none yet. A null or empty name takes the very next one. A name is matched up to the first of
    /// " =/[]" behind the element's name: "a[1]" finds `a`. False leaves the position as it is.
    bool FindElement(const wchar_t* name = nullptr);

    /// Goes down into the current element, to where `LeaveElement` last left its children.
    bool EnterElement();

    /// Goes up to the element whose children are walked. False at the top.
    bool LeaveElement();

    /// Keeps the position under a name, which may be empty, in place of an earlier one. It lasts
    /// until the next `LoadText` or until its element is deleted. False for a null name.
    bool SavePosition(const wchar_t* name);

    /// Goes back to a saved position, which remains saved. A node that is not an element is not
    /// part of it. False if there is none under that name.
    bool RestorePosition(const wchar_t* name);

    /// Drops saved positions whose elements were deleted. The engine does so itself.
    void PurgeSavedPositions();

    // Reading

    /// Name of the current element, "#text", "#comment" or "#cdata-section", or the name within an
    /// instruction or doctype.
    std::wstring GetCurrentName() const;

    /// The name in the start tag, prefix included.
    std::wstring GetElementName(std::int32_t record) const;

    /// The unescaped value of an attribute, or its name if it stands there without a value; empty
    /// if there is none. Reads the current instruction as well. Needs a position on an element or
    /// instruction.
    std::wstring GetAttribute(std::int32_t record, const wchar_t* name) const;

    /// The unescaped text of an element without child elements, CDATA sections included; empty for
    /// an element with children. For the current node: its text without the delimiters. Of record
    /// 0, the text of a document without elements.
    std::wstring GetElementData(std::int32_t record) const;

    /// The text between the tags as it stands in the document.
    std::wstring GetInnerMarkup(std::int32_t record) const;

    // Editing

    /// Sets an attribute of an element, or of the current instruction, behind the ones it has.
    /// False for a null name or where `GetAttribute` could not read.
    bool SetAttribute(std::int32_t record, const wchar_t* name, const wchar_t* value);

    /// Adds an element behind the current one, or as the last of its level if there is none, and
    /// moves to it. Without data, null or empty, it is an empty element. `flags` are `MXmlAddFlag`
    /// bits. False for `XmlAddChild` without a current element, for `XmlAddNoEndTag` with data, and
    /// for `XmlAddMarkup` with data that is not well-formed.
    bool AddElement(const wchar_t* name, const wchar_t* data, std::uint32_t flags);

    /// Adds an element that has an attribute, both or neither.
    bool AddElement(const wchar_t* name, const wchar_t* data, std::uint32_t flags,
                    const wchar_t* attribute, const wchar_t* value);

    /// Adds a node of an `MXmlNodeType` behind the current one and moves to it; see
    /// `BuildNodeText`. False if that is. Comments, instructions and the doctype get a line break
    /// behind them; text and CDATA count as `XmlAddNoLineBreak`. The current element is afterwards
    /// the one in front of the node: the last of the level if there was none, or with
    /// `XmlAddBefore` the one before, or none.
    bool AddNode(std::int32_t type, const wchar_t* text, std::uint32_t flags);

    /// Puts the markup in place of all that the current element contains, unchanged, and indexes
    /// it. Answers 1 if it is well-formed, else 0 with the finding in `GetErrorText`, its offset
    /// counted from the front of the markup; the markup is in place either way. Answers 0 and does
    /// nothing if the position is not on an element.
    int ReplaceInnerMarkup(const wchar_t* markup);

    // Conversions

    /// The text with references for "<", "&" and ">", for the quotes as well with
    /// `XmlAddEscapeQuotes`; with `XmlAddKeepReferences` well-formed references are left alone.
    static std::wstring EscapeText(const wchar_t* text, std::uint32_t flags);

    /// The first `length` characters of the text, or all of it for -1, with the five named
    /// references and numeric ones resolved; others remain as they are. A numeric reference gives
    /// one 16-bit character. One that gives zero adds the zero and remains behind it.
    static std::wstring UnescapeText(const wchar_t* text, std::int32_t length);

    /// The text as CDATA, over two sections wherever it holds "]]>".
    static std::wstring WrapCdata(const wchar_t* text);

    /// The source text of a node; empty for a type that is none. False, with an empty result, for
    /// CDATA that holds "]]>" and for `XmlNodeLoneEndTag`.
    static bool BuildNodeText(std::int32_t type, const wchar_t* text, std::wstring& result);

    // Tokens, for those who read inside a tag

    /// Reads the next name, or a single character where none stands. False at the end of the text.
    static bool NextNameToken(MXmlTokenCursor& cursor);

    /// Looks for an attribute in the tag behind whose "<" the cursor's `next` stands: by name, or
    /// with a null name the one of that number, counted from 0. If found by name, the cursor is on
    /// the value, or on the name if it stands without one; by number, on the name. If not,
    /// `next` is where a new attribute goes.
    static bool FindAttribute(MXmlTokenCursor& cursor, const wchar_t* name, std::int32_t number);

    // The index

    /// The record of an element; record 0 is the document's. `record` must be below
    /// `GetRecordCount`. The reference is void after anything that adds an element.
    const MXmlElementRecord& GetRecord(std::int32_t record) const { return index[record]; }

    /// Records in use, record 0 and deleted ones included.
    std::int32_t GetRecordCount() const { return index.Count(); }

    /// Head of the list of deleted records, linked through `nextSibling`; 0 if there are none.
    std::int32_t GetDeletedHead() const { return index.DeletedHead(); }

    /// Number of records for which there is memory.
    std::int32_t GetRecordCapacity() const { return index.Capacity(); }

    /// Makes room for that many records, or for half as many again as are in use if `count` is 0;
    /// goes at most one segment further at a time. Always answers true.
    bool GrowRecords(std::int32_t count);

private:
    int ParseDocument(const wchar_t* source, std::int32_t length);
    void IndexDocument(const wchar_t* source, std::int32_t length);
    void TakeAndIndex(const wchar_t* source, std::int32_t length);
    std::int32_t ParseFragment(const std::wstring& markup, std::uint32_t level);

    void ClearPosition();
    void MoveTo(std::int32_t parent, std::int32_t main, std::int32_t child);
    bool IsOnNode(std::int32_t record) const { return record == mainIndex && nodeLength != 0; }
    std::int32_t FindNextSibling(std::int32_t parent, std::int32_t sibling,
                                 const wchar_t* name) const;

    MXmlTokenCursor CursorInTag(std::int32_t record) const;
    bool OpenTag(std::int32_t record, MXmlTokenCursor& cursor) const;
    std::wstring NameInNode() const;
    std::wstring NodeData() const;
    std::wstring ContentData(std::int32_t start, std::int32_t end) const;

    std::int32_t SpliceElement(std::int32_t sibling, MXmlInsertRequest& request,
                               MXmlElementRecord& element, const wchar_t* markup);

    MXmlDocumentText documentText;
    std::wstring errorText;
    std::int32_t parentIndex = 0;
    std::int32_t mainIndex = 0;
    std::int32_t childIndex = 0;
    std::int32_t nodeType = 0;
    std::int32_t nodeOffset = 0;
    std::int32_t nodeLength = 0;
    std::uint32_t documentFlags = 0;
    MXmlSavedPositions savedPositions;
    MXmlElementIndex index;
};
