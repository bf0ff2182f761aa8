#include "program/files/ReportXml.h"

#include <windows.h>
#include <wrl/client.h>
#include <xmllite.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <string>
#include <utility>

#include "platform/Library.h"
#include "service/Utf8.h"
#include "verdict/files/FileError.h"
#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::program {

namespace {

using Microsoft::WRL::ComPtr;

constexpr UINT MaxDepth = 8;
constexpr const char* NotAReport =
    "The file is not a report of the control, or is damaged. Ask for the file again.";

void Require(HRESULT result)
{
    if (FAILED(result))
        throw FileError(NotAReport);
}

ComPtr<IStream> MakeStream(const std::string& bytes)
{
    ComPtr<IStream> stream;
    ULONG written = 0;
    Require(CreateStreamOnHGlobal(nullptr, TRUE, &stream));
    Require(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written));
    Require(stream->Seek({}, STREAM_SEEK_SET, nullptr));
    return stream;
}

ComPtr<IXmlReader> MakeReader(IStream* stream)
{
    static auto* const create =
        PermanentFunction<decltype(CreateXmlReader)>(L"xmllite.dll", "CreateXmlReader");
    if (create == nullptr)
        throw FileError("This Windows lacks xmllite.dll, which reads XML. Use a file that kel report wrote.");
    ComPtr<IXmlReader> reader;
    Require(create(__uuidof(IXmlReader), reinterpret_cast<void**>(reader.GetAddressOf()), nullptr));
    Require(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit));
    Require(reader->SetProperty(XmlReaderProperty_MaxElementDepth, MaxDepth));
    Require(reader->SetInput(stream));
    return reader;
}

std::wstring LocalName(IXmlReader* reader)
{
    const wchar_t* name = nullptr;
    UINT length = 0;
    Require(reader->GetLocalName(&name, &length));
    return {name, length};
}

/// The number that the attribute is; `otherwise` when the element has no such attribute.
int ReadNumber(IXmlReader* reader, const wchar_t* attribute, int otherwise)
{
    if (reader->MoveToAttributeByName(attribute, nullptr) != S_OK)
        return otherwise;
    const wchar_t* text = nullptr;
    UINT length = 0;
    Require(reader->GetValue(&text, &length));
    const std::string digits = ToUtf8(std::wstring(text, length));
    Require(reader->MoveToElement());
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() ? number : -1;
}

/// Collects the groups of a report, element by element.
class GroupReader {
public:
    void Begin(IXmlReader* reader, const std::wstring& name)
    {
        ++depth;
        if (depth == 1 && name != L"groups")
            throw FileError(NotAReport);
        if (depth == 2 && name == L"group")
            Add(ReadNumber(reader, L"id", -1), ReadNumber(reader, L"index", 0));
        isInValue = depth == 3 && name == L"value";
    }

    void End()
    {
        --depth;
        isInValue = false;
    }

    void AddText(std::wstring_view text)
    {
        if (isInValue && current != nullptr)
            current->text += ToUtf8(text);
    }

    std::vector<Fact> Facts() const
    {
        std::vector<Fact> facts;
        for (const auto& [key, place] : places)
            facts.push_back(place);
        return facts;
    }

private:
    /// An id that is not a number is one that only a page can have.
    void Add(int id, int index)
    {
        current = nullptr;
        if (id > 0 && index >= 0)
            current = &(places[{id, index}] = Fact{id, index, "", ""});
    }

    int depth = 0;
    bool isInValue = false;
    Fact* current = nullptr;
    std::map<std::pair<int, int>, Fact> places;
};

}  // namespace

std::vector<Fact> ReadReportXml(std::string_view xml)
{
    if (xml.starts_with("<?xml"))  // the text may have had another encoding before
        xml.remove_prefix(std::min(xml.find("?>"), xml.size() - 2) + 2);
    const std::string clean = XmlText(Trim(xml));
    // Wine's reader adds the ends that a document lacks, and ends the process where the last character is not
    // ASCII.
    if (!clean.ends_with("</groups>") && clean != "<groups/>")
        throw FileError(NotAReport);
    const ComPtr<IStream> stream = MakeStream(clean);
    const ComPtr<IXmlReader> reader = MakeReader(stream.Get());
    GroupReader groups;
    HRESULT result = S_OK;
    XmlNodeType type = XmlNodeType_None;
    // Each node takes a byte at least. Wine's reader returns empty ones without end where a text is cut off.
    std::size_t nodes = 0;
    while ((result = reader->Read(&type)) == S_OK && ++nodes <= clean.size()) {
        if (type == XmlNodeType_Element) {
            const bool isEmpty = reader->IsEmptyElement();
            groups.Begin(reader.Get(), LocalName(reader.Get()));
            if (isEmpty)
                groups.End();
        } else if (type == XmlNodeType_EndElement) {
            groups.End();
        } else if (type == XmlNodeType_Text || type == XmlNodeType_Whitespace || type == XmlNodeType_CDATA) {
            const wchar_t* text = nullptr;
            UINT length = 0;
            Require(reader->GetValue(&text, &length));
            groups.AddText({text, length});
        }
    }
    if (result != S_FALSE)  // the end of a document that is well-formed
        throw FileError(NotAReport);
    return groups.Facts();
}

}  // namespace kel::program
