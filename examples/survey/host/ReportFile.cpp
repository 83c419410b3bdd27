#include "examples/survey/host/ReportFile.h"

#include "examples/survey/host/Utf8.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"

#include <windows.h>

namespace
{

const wchar_t rootTag[] = L"SurveyReport";
const unsigned int version = 1;

HANDLE OpenFile(const std::wstring& path, DWORD access, DWORD disposition)
{
    return CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool WriteBytes(const std::wstring& path, const std::string& bytes)
{
    const HANDLE file = OpenFile(path, GENERIC_WRITE, CREATE_ALWAYS);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    return written == bytes.size();
}

bool ReadBytes(const std::wstring& path, std::string& bytes)
{
    const HANDLE file = OpenFile(path, GENERIC_READ, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    char piece[4096];
    DWORD read = 0;
    while (ReadFile(file, piece, sizeof piece, &read, nullptr) && read != 0)
        bytes.append(piece, read);
    CloseHandle(file);
    return true;
}

} // namespace

ReportFile::ReportFile(const std::wstring& path) : path(path) {}

bool ReportFile::Save(const std::vector<SurveyResult>& results) const
{
    MOutFilerTaggedXml filer(rootTag, nullptr);
    bool filed = filer.WriteUInt32(L"Version", version);
    for (const SurveyResult& result : results)
        filed = filed && result.Write(filer);
    MString text;
    return filed && filer.GetDocumentText(&text) && WriteBytes(path, EncodeUtf8(text.c_str()));
}

bool ReportFile::Load(std::vector<SurveyResult>& results) const
{
    std::string bytes;
    if (!ReadBytes(path, bytes))
        return false;
    MInFilerTaggedXml filer(DecodeUtf8(bytes).c_str(), rootTag, nullptr);
    unsigned int filedVersion = 0;
    if (!filer.ReadUInt32(L"Version", &filedVersion, 0) || filedVersion != version)
        return false;
    SurveyResult result;
    while (result.Read(filer)) {
        results.push_back(result);
        result = SurveyResult();
    }
    return true;
}
