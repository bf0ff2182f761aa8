#include "probes/storage/OpticalAbilities.h"

#include <windows.h>

#include <winioctl.h>

#include <algorithm>
#include <cwctype>
#include <string_view>
#include <vector>

#include "values/Text.h"

namespace kel {

namespace {

// The abilities of each kind of drive: a burner reads what it burns, and also burns the older media.
constexpr unsigned Combo = WritesCds | ReadsDvds;
constexpr unsigned DvdWriter = Combo | WritesDvds;
constexpr unsigned BdReader = ReadsDvds | ReadsBluRay;
constexpr unsigned BdCombo = DvdWriter | ReadsBluRay;
constexpr unsigned BdWriter = BdCombo | WritesBluRay;

// GET CONFIGURATION: a header, then features, each with a header of its own.
constexpr std::size_t ConfigurationHeader = 8;
constexpr std::size_t LengthField = 4;
constexpr std::size_t FeatureHeader = 4;
constexpr std::size_t AdditionalLengthPlace = 3;
constexpr std::size_t ProfileSize = 4;
constexpr std::uint64_t ProfileListFeature = 0;

/// A range of profiles with the same abilities.
struct ProfileRange {
    unsigned first;
    unsigned last;
    unsigned abilities;
};

/// The numbers are the MMC standard's.
constexpr ProfileRange Profiles[] = {
    {0x09, 0x0A, WritesCds},                                   // CD-R, CD-RW
    {0x10, 0x10, ReadsDvds},                                   // DVD-ROM
    {0x11, 0x14, ReadsDvds | WritesDvds},                      // DVD-R, DVD-RAM, DVD-RW
    {0x15, 0x17, ReadsDvds | WritesDvds | WritesDoubleLayer},  // the same in double layer
    {0x18, 0x18, ReadsDvds | WritesDvds},                      // DVD-Download
    {0x1A, 0x1B, ReadsDvds | WritesDvds},                      // DVD+RW, DVD+R
    {0x2A, 0x2B, ReadsDvds | WritesDvds | WritesDoubleLayer},  // the same in double layer
    {0x40, 0x40, ReadsBluRay},                                 // BD-ROM
    {0x41, 0x43, ReadsBluRay | WritesBluRay},                  // BD-R, BD-RE
};

constexpr std::size_t MediaOffset = offsetof(GET_MEDIA_TYPES, MediaInfo);
constexpr std::size_t MediumOffset = 8;
constexpr std::size_t CharacteristicsOffset = 28;
static_assert(MediaOffset == 8 && sizeof(DEVICE_MEDIA_INFO) == 32);

/// A word of a drive's name, without its signs: alone, or followed by the model's number.
struct NameWord {
    std::wstring_view word;
    unsigned abilities;
};

constexpr NameWord NameWords[] = {
    {L"BDRE", BdWriter},       {L"BDRW", BdWriter},    {L"BDR", BdWriter},       {L"BDMLT", BdWriter},
    {L"BDE", BdCombo},         {L"BW", BdWriter},      {L"IHBS", BdWriter},      {L"BDCMB", BdCombo},
    {L"BDDVDW", BdCombo},      {L"BDDVDRW", BdCombo},  {L"DVDWBD", BdCombo},     {L"BDC", BdCombo},
    {L"BC", BdCombo},          {L"IHES", BdCombo},     {L"BDROM", BdReader},     {L"BD", BdReader},
    {L"IHOS", BdReader},       {L"DVDRAM", DvdWriter}, {L"DVDRW", DvdWriter},    {L"DVDRRW", DvdWriter},
    {L"DVDR", DvdWriter},      {L"DVDW", DvdWriter},   {L"CDDVDW", DvdWriter},   {L"CDDVDRW", DvdWriter},
    {L"DVDWRITER", DvdWriter}, {L"DVDA", DvdWriter},   {L"DRW", DvdWriter},      {L"DVR", DvdWriter},
    {L"IHAS", DvdWriter},      {L"COMBO", Combo},      {L"DVDCDRW", Combo},      {L"CDRWDVD", Combo},
    {L"DVDROM", ReadsDvds},    {L"DVD", ReadsDvds},    {L"IHDS", ReadsDvds},     {L"CDRW", WritesCds},
    {L"CDR", WritesCds},       {L"CDW", WritesCds},    {L"CDWRITER", WritesCds}, {L"RW", WritesCds},
};

/// The words in upper case. Signs within a word are dropped: "DVD+-RW" is "DVDRW".
std::vector<std::wstring> GetWords(const std::wstring& name)
{
    std::vector<std::wstring> words(1);
    for (const wchar_t character : ToUpper(name)) {
        if (std::wcschr(L" \t_/,()", character) != nullptr)
            words.emplace_back();
        else if (std::iswalnum(character) != 0)
            words.back() += character;
    }
    std::erase(words, L"");
    return words;
}

/// Whether a mark is followed by nothing, or by a model's number.
bool EndsMark(std::wstring_view rest)
{
    return rest.empty() || std::iswdigit(rest.front()) != 0;
}

/// Whether a word begins with a mark, or has a mark of sufficient length after a vendor that is joined to it,
/// as in "TSSTCORPDVDROM".
bool HasMark(std::wstring_view text, std::wstring_view mark)
{
    constexpr std::size_t MinInnerMark = 4;
    if (text.starts_with(mark))
        return EndsMark(text.substr(mark.size()));
    const std::size_t place = mark.size() >= MinInnerMark ? text.find(mark) : text.npos;
    return place != text.npos && EndsMark(text.substr(place + mark.size()));
}

}  // namespace

OpticalAbilities ReadProfiles(Bytes answer)
{
    const auto length = ReadBigEndian(answer, 0, LengthField);
    const Bytes bytes = answer.first(
        static_cast<std::size_t>(std::min<std::uint64_t>(answer.size(), LengthField + length.value_or(0))));
    OpticalAbilities abilities;
    const auto feature = ReadBigEndian(bytes, ConfigurationHeader, 2);
    const auto size = ReadBigEndian(bytes, ConfigurationHeader + AdditionalLengthPlace, 1);
    if (feature != ProfileListFeature || !size)
        return abilities;
    const std::size_t start = ConfigurationHeader + FeatureHeader;
    const std::size_t count = static_cast<std::size_t>(*size) / ProfileSize;
    for (std::size_t place = 0; place < count; ++place) {
        const auto profile = ReadBigEndian(bytes, start + place * ProfileSize, 2);
        if (!profile)
            return abilities;
        for (const ProfileRange& range : Profiles) {
            if (*profile >= range.first && *profile <= range.last)
                abilities.Raise(range.abilities);
        }
    }
    if (count > 0)
        abilities.known = AllAbilities;
    return abilities;
}

OpticalAbilities ReadMediaTypes(Bytes answer)
{
    OpticalAbilities abilities;
    const auto type = ReadLittleEndian(answer, offsetof(GET_MEDIA_TYPES, DeviceType), sizeof(DWORD));
    if (type != FILE_DEVICE_CD_ROM && type != FILE_DEVICE_DVD)
        return abilities;
    if (type == FILE_DEVICE_DVD)
        abilities.Raise(ReadsDvds);
    const std::uint64_t count =
        ReadLittleEndian(answer, offsetof(GET_MEDIA_TYPES, MediaInfoCount), sizeof(DWORD)).value_or(0);
    for (std::uint64_t place = 0; place < count; ++place) {
        const std::size_t start = MediaOffset + static_cast<std::size_t>(place) * sizeof(DEVICE_MEDIA_INFO);
        const auto medium = ReadLittleEndian(answer, start + MediumOffset, sizeof(DWORD));
        const auto characteristics = ReadLittleEndian(answer, start + CharacteristicsOffset, sizeof(DWORD));
        if (!medium || !characteristics)
            break;
        const bool isWritten = (*characteristics & (MEDIA_WRITE_ONCE | MEDIA_READ_WRITE)) != 0;
        if (*medium == DVD_ROM || *medium == DVD_R || *medium == DVD_RW || *medium == DVD_RAM)
            abilities.Raise(*medium != DVD_ROM && isWritten ? ReadsDvds | WritesDvds : ReadsDvds);
        else if ((*medium == CD_R || *medium == CD_RW) && isWritten)
            abilities.Raise(WritesCds);
    }
    return abilities;
}

unsigned GetAbilitiesOfName(const std::wstring& name)
{
    const std::vector<std::wstring> words = GetWords(name);
    unsigned abilities = 0;
    for (std::size_t place = 0; place < words.size(); ++place) {
        // "DVD RW" is two words, and neither is enough alone.
        const std::wstring pair = place + 1 < words.size() ? words[place] + words[place + 1] : std::wstring();
        for (const NameWord& entry : NameWords) {
            if (HasMark(words[place], entry.word) || pair == entry.word)
                abilities |= entry.abilities;
        }
        if (words[place].find(L"DVD") != std::wstring::npos)
            abilities |= ReadsDvds;
    }
    return abilities;
}

}  // namespace kel
