#include "varek/Filing.h"

#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "varek/Errors.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>

#include <windows.h>

namespace varek
{

namespace
{

void Parse(const MString& text, long long* value, wchar_t** end)
{
    *value = std::wcstoll(text.c_str(), end, 10);
}

void Parse(const MString& text, unsigned long long* value, wchar_t** end)
{
    *value = std::wcstoull(text.c_str(), end, 10);
}

} // namespace

template <class T>
bool Filing::FileBy(bool (IInFilerTagged::*read)(const MString&, T*, T),
                    bool (IOutFilerTagged::*write)(const MString&, T), const MString& tag, T& value)
{
    if (!in)
        return Note(tag, absent == 0 && (out->*write)(tag, value));
    const T before = value;
    const bool filed = Note(tag, absent == 0 && (in->*read)(tag, &value, value));
    if (!filed)
        value = before;
    return filed;
}

bool Filing::FileNumber(const MString& tag, bool& value)
{
    return FileBy(&IInFilerTagged::ReadBool, &IOutFilerTagged::WriteBool, tag, value);
}

bool Filing::FileNumber(const MString& tag, char& value)
{
    return FileBy(&IInFilerTagged::ReadChar, &IOutFilerTagged::WriteChar, tag, value);
}

bool Filing::FileNumber(const MString& tag, unsigned char& value)
{
    return FileBy(&IInFilerTagged::ReadByte, &IOutFilerTagged::WriteByte, tag, value);
}

bool Filing::FileNumber(const MString& tag, short& value)
{
    return FileBy(&IInFilerTagged::ReadInt16, &IOutFilerTagged::WriteInt16, tag, value);
}

bool Filing::FileNumber(const MString& tag, unsigned short& value)
{
    return FileBy(&IInFilerTagged::ReadUInt16, &IOutFilerTagged::WriteUInt16, tag, value);
}

bool Filing::FileNumber(const MString& tag, int& value)
{
    return FileBy(&IInFilerTagged::ReadInt32, &IOutFilerTagged::WriteInt32, tag, value);
}

bool Filing::FileNumber(const MString& tag, unsigned& value)
{
    return FileBy(&IInFilerTagged::ReadUInt32, &IOutFilerTagged::WriteUInt32, tag, value);
}

bool Filing::FileNumber(const MString& tag, float& value)
{
    return FileBy(&IInFilerTagged::ReadFloat, &IOutFilerTagged::WriteFloat, tag, value);
}

bool Filing::FileNumber(const MString& tag, double& value)
{
    return FileBy(&IInFilerTagged::ReadDouble, &IOutFilerTagged::WriteDouble, tag, value);
}

bool Filing::FileNumber(const MString& tag, long long& value)
{
    return FileAsText(tag, value);
}

bool Filing::FileNumber(const MString& tag, unsigned long long& value)
{
    return FileAsText(tag, value);
}

// Filers have no numbers of 64 bits.
template <class T>
bool Filing::FileAsText(const MString& tag, T& value)
{
    if (!in) {
        MString text = TextOf(value);
        return FileText(tag, text);
    }
    MString text;
    const MString none;
    wchar_t* end = nullptr;
    T number = 0;
    errno = 0;
    if (absent == 0 && in->ReadString(tag, text, none))
        Parse(text, &number, &end);
    const bool filed = Note(tag, end && end != text.c_str() && *end == L'\0' && errno == 0);
    if (filed)
        value = number;
    return filed;
}

bool Filing::FileText(const MString& tag, MString& value)
{
    if (!in)
        return Note(tag, absent == 0 && out->WriteString(tag, value));
    const MString before = value;
    return Note(tag, absent == 0 && in->ReadString(tag, value, before));
}

bool Filing::FileText(const MString& tag, std::wstring& value)
{
    MString text = ToMString(value);
    const bool filed = FileText(tag, text);
    if (filed && in)
        value = ToString(text);
    return filed;
}

// What is in a group that is not there is not told apart from the group.
bool Filing::Note(const MString& tag, bool filed)
{
    if (filed) {
        ++found;
        return true;
    }
    MString path;
    for (const MString& group : groups)
        path += group + L"/";
    path += tag;
    if (in && absent == 0 && !silent)
        missing.push_back(path);
    if (out && failedTag.IsEmpty())
        failedTag = path;
    return false;
}

bool Filing::Begin(const MString& tag)
{
    const bool isThere = absent == 0 && (in ? in->BeginGroup(tag) : out->BeginGroup(tag));
    if (!isThere || (groupsAreTold && !silent))
        Note(tag, isThere);
    groups.push_back(tag);
    absent += !isThere;
    return isThere;
}

// Takes no memory: it may be the want of it that ends the group.
void Filing::End()
{
    MString tag = std::move(groups.back());
    groups.pop_back();
    if (absent > 0) {
        --absent;
        return;
    }
    const bool ended = in ? in->EndGroup() : out->EndGroup();
    if (!ended && !in && failedTag.IsEmpty())
        failedTag = std::move(tag);
}

unsigned Filing::Version(unsigned current)
{
    unsigned version = in ? 0 : current;
    const bool before = silent;
    silent = true;
    FileNumber(L"Version", version);
    silent = before;
    return version;
}

// What has been read in part is not kept.
template <class T>
bool Filing::FileThrough(const MString& tag, T& failure)
{
    MFilerTaggedPair filer(in, out);
    if (!in)
        return Note(tag, absent == 0 && failure.Write(filer, tag));
    T read;
    const bool filed = Note(tag, absent == 0 && read.Read(filer, tag, read));
    if (filed)
        detail::Replace(failure, read);
    return filed;
}

bool Filing::FileFailure(const MString& tag, MError& error)
{
    return FileThrough(tag, error);
}

bool Filing::FileFailure(const MString& tag, MException& exception)
{
    return FileThrough(tag, exception);
}

void Describe(Filing& filing, MError& error)
{
    filing(L"Error", error);
}

void Describe(Filing& filing, MException& exception)
{
    filing(L"Exception", exception);
}

namespace detail
{

namespace
{

/// A handle of a file, closed in the end.
class File
{
public:
    File(const std::wstring& path, DWORD access, DWORD disposition)
        : handle(CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                             FILE_ATTRIBUTE_NORMAL, nullptr))
    {
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File()
    {
        if (IsOpen())
            CloseHandle(handle);
    }

    bool IsOpen() const { return handle != INVALID_HANDLE_VALUE; }

    bool WriteAll(const std::string& bytes)
    {
        for (std::size_t done = 0; done < bytes.size();) {
            const std::size_t piece = std::min<std::size_t>(bytes.size() - done, 1 << 24);
            DWORD written = 0;
            if (!::WriteFile(handle, &bytes[done], static_cast<DWORD>(piece), &written, nullptr))
                return false;
            done += written;
        }
        return FlushFileBuffers(handle) != FALSE;
    }

    bool ReadAll(std::string& bytes)
    {
        char piece[4096];
        DWORD read = 0;
        do {
            if (!::ReadFile(handle, piece, sizeof piece, &read, nullptr))
                return false;
            bytes.append(piece, read);
        } while (read != 0);
        return true;
    }

private:
    HANDLE handle;
};

bool WriteNewFile(const std::wstring& path, const std::string& bytes)
{
    File file(path, GENERIC_WRITE, CREATE_ALWAYS);
    return file.IsOpen() && file.WriteAll(bytes);
}

[[noreturn]] void RaiseFileError(const wchar_t* function, const wchar_t* code,
                                 const std::wstring& path)
{
    const DWORD error = GetLastError();
    TracedLocation location(L"varek", function);
    Raise(location, code).With(L"path", path).With(L"winErrorCode", error).Throw();
}

void CheckFiled(const Filing& filing, const wchar_t* function)
{
    if (filing.GetFailedTag().IsEmpty())
        return;
    TracedLocation location(L"varek", function);
    Raise(location, L"CannotFile").With(L"tag", filing.GetFailedTag()).Throw();
}

Reading ReadFrom(IInFilerTagged& filer, bool groupsAreTold, DescribeObject describe, void* object)
{
    Filing filing(filer, groupsAreTold);
    describe(filing, object);
    return filing.GetReading();
}

} // namespace

MString WriteXml(DescribeObject describe, void* object, const wchar_t* rootTag)
{
    MOutFilerTaggedXml filer(rootTag, nullptr);
    Filing filing(filer);
    describe(filing, object);
    CheckFiled(filing, L"ToXml");
    MString text;
    filer.GetDocumentText(&text);
    return text;
}

Reading ReadXml(const MString& text, DescribeObject describe, void* object, const wchar_t* rootTag)
{
    static TracedLocation location(L"varek", L"FromXml");
    MInFilerTaggedXml filer(text, rootTag, nullptr);
    if (!filer.IsOpen())
        Raise(location, L"NotADocument").Throw();
    Reading reading = ReadFrom(filer, true, describe, object);
    reading.wasThere = true;
    return reading;
}

Reading ReadNothing(DescribeObject describe, void* object)
{
    MInFilerTaggedXml filer(MString(), nullptr, nullptr); // which is not open
    return ReadFrom(filer, true, describe, object);
}

void WriteRegistry(const MString& area, DescribeObject describe, void* object)
{
    IOutFilerTaggedRegistry filer(area);
    Filing filing(filer);
    describe(filing, object);
    CheckFiled(filing, L"SaveRegistry");
}

Reading ReadRegistry(const MString& area, DescribeObject describe, void* object)
{
    IInFilerTaggedRegistry filer(area, false);
    return ReadFrom(filer, false, describe, object);
}

void WriteFile(const std::wstring& path, const MString& text)
{
    const std::wstring fresh = path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" +
                               std::to_wstring(GetCurrentThreadId()) + L".new";
    const std::string bytes = ToUtf8(text);
    if (WriteNewFile(fresh, bytes) &&
        MoveFileExW(fresh.c_str(), path.c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return;
    const DWORD error = GetLastError();
    DeleteFileW(fresh.c_str());
    SetLastError(error);
    RaiseFileError(L"SaveXml", L"CannotWrite", path);
}

bool ReadFile(const std::wstring& path, MString& text)
{
    File file(path, GENERIC_READ, OPEN_EXISTING);
    if (!file.IsOpen() &&
        (GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND))
        return false;
    std::string bytes;
    if (!file.IsOpen() || !file.ReadAll(bytes))
        RaiseFileError(L"LoadXml", L"CannotRead", path);
    const std::size_t mark = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    text = ToMString(FromUtf8(bytes.substr(mark)));
    return true;
}

MString ItemTag(std::size_t number)
{
    return L"Item" + TextOf(static_cast<unsigned long long>(number + 1));
}

} // namespace detail
} // namespace varek
