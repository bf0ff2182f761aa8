#include "detectors/EmptyValues.h"

#include <gtest/gtest.h>

#include "support/TestSession.h"

namespace kel {
namespace {

/// For each word of the catalogue that stands for a source, a value that no other word connects with it.
TEST(EmptyValues, HaveTheReasonOfASourceThatFailed)
{
    const std::pair<const wchar_t*, std::vector<unsigned>> rows[] = {
        {L"WMI Win32_BIOS", {71061}},
        {L"registry SOFTWARE", {71392, 72007, 73102}},
        {L"Setup API SetupDiOpenDevRegKey", {72006}},
        {L"Setup API SetupDiGetClassDevs", {73470, 72006, 72106}},
        {L"disk 0", {72502, 72504, 72506, 72500}},
        {L"optical drive 0", {72507, 72300, 72105, 72601}},
        {L"QueryDosDeviceW", {72601, 72502, 72504}},
        {L"volume C:", {72604, 72605, 72600}},
        {L"GetIfTable2", {72700, 72709}},
        {L"GetAdaptersAddresses", {72700, 72704, 72709}},
        {L"sound endpoints", {72801, 72805}},
        {L"QueryDisplayConfig", {72400, 72401, 72405}},
        {L"CreateDXGIFactory1", {72002}},
        {L"CheckInterfaceSupport", {72002, 72007}},
        {L"Direct3DCreate9Ex", {72002}},
        {L"D3D11CreateDevice", {72002}},
        {L"download", {71069}},
    };
    for (const auto& [source, ids] : rows) {
        test::TestSession session;
        session.wanted.Assign(L"71069", L"", true);
        for (const unsigned id : ids) {
            NoteFailure(id, 0, {{source, 5}});
            EXPECT_EQ(session.Why(id), std::wstring(L"not readable: ") + source + L", error 5") << id;
        }
        NoteFailure(71253, 0, {{source, 5}});
        EXPECT_EQ(session.Why(71253), L"not there") << source;
    }
}

}  // namespace
}  // namespace kel
