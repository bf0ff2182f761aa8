// Machines by their displays, and what is stored of these and of the monitors.
#pragma once

#include "support/FakeDisplays.h"

namespace kel::test {

struct DisplayMachine {
    const char* what;
    FakeDisplays displays;
    std::map<std::wstring, const char*> edids;  ///< by instance, by what recorded them
    const wchar_t* graphics;                    ///< ids 72400 to 72406, in the order in which they are stored
    std::vector<std::wstring> monitors;         ///< ids 73100 to 73113 of each
};

constexpr DISPLAYCONFIG_RATIONAL Hz60 = {60, 1}, Ntsc = {60000, 1001}, Unknown = {60, 0},
                                 Hz144 = {143856, 1000};
constexpr const wchar_t* DellInstance = L"DISPLAY#DELA0BE#5&ANNA&0&UID1";
constexpr const wchar_t* PanelInstance = L"DISPLAY#APPA044#4&ANNA&0&UID2";
constexpr Screen Dell = {0, 0, 0, 3840, 2160, Ntsc, 10, L"DELL P2415Q", DellInstance, 1};
constexpr Screen Panel = {1, -1920, 0, 1920, 1200, Hz144, 0x80000000, L"", PanelInstance, 0};
const std::map<std::wstring, const char*> Recorded = {
    {L"DISPLAY\\DELA0BE\\5&ANNA&0&UID1", "dell-p2415q-dp"},
    {L"DISPLAY\\APPA044\\4&ANNA&0&UID2", "apple-macbookpro-16inch-2019"}};

inline const DisplayMachine DisplayMachines[] = {
    {"none", {{}}, {}, L"No|0|No||||", {L"No|0||||||||||||"}},
    {"one, scaled to 150 percent",
     {{Dell}},
     Recorded,
     L"Yes|1|No|3840x2160|32|60|3840x2160",
     {L"Yes|1|DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|3840x2160|60|238|527|296|DisplayPort|No|Yes|2016"}},
    {"two, the primary one second",
     {{Panel, Dell}},
     Recorded,
     L"Yes|2|No|3840x2160|32|60|5760x2160",
     {L"Yes|2|DELL P2415Q|DISPLAY\\DELA0BE|3840x2160|3840x2160|60|238|527|296|DisplayPort|No|Yes|2016",
      L"Color LCD|DISPLAY\\APPA044|3072x1920|1920x1200|144|160|345|215|internal|Yes|No|2019"}},
    {"cloned",
     {{Dell, {0, 0, 0, 3840, 2160, Hz60, 5, L"LG", L"DISPLAY#GSM0001#1", -1}}},
     {},
     L"Yes|1|No|3840x2160|32|60|3840x2160",
     {L"Yes|2|DELL P2415Q|DISPLAY\\DELA0BE||3840x2160|60||||DisplayPort|No|Yes|",
      L"LG|DISPLAY\\GSM0001||3840x2160|60||||HDMI|No||"}},
    {"upright, its rate unknown, a monitor plugged in twice while it is asked",
     {{{0, 0, 0, 1080, 1920, Unknown, 4, L"Generic PnP Monitor", L"DISPLAY#DEL40A5#1"}}, true, true, 2},
     {},
     L"Yes|1|No|1080x1920|32||1080x1920",
     {L"Yes|1||DISPLAY\\DEL40A5||1080x1920|||||DVI|No||"}},
    {"a remote session, without paths",
     {{{0, 0, 0, 1600, 900, {32, 1}, 0, L"", L"DISPLAY#DEFAULT_MONITOR#1"}}, false, true, 0, true},
     {},
     L"Yes|1|Yes|1600x900|32|32|1600x900",
     {L"Yes|1||DISPLAY\\DEFAULT_MONITOR||1600x900|32|||||||"}},
    {"neither paths nor devices",
     {{Dell, Panel}, false, false},
     {},
     L"Yes|2|No|3840x2160|||5760x2160",
     {L"Yes|2||||3840x2160||||||||", L"|||1920x1200||||||||"}},
};

}  // namespace kel::test
