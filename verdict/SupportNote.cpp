#include "verdict/SupportNote.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "verdict/text/Text.h"

namespace kel {

namespace {

// The clipboard of the old engine, then the one that secure pages have, then the selection.
constexpr const char* CopyNote =
    "var n=this.previousElementSibling,t=n.textContent;"
    "if(window.clipboardData)clipboardData.setData('Text',t);"
    "else if(navigator.clipboard)navigator.clipboard.writeText(t);"
    "else{getSelection().selectAllChildren(n);document.execCommand('copy')}"
    "this.textContent='Copied'";

/// "2026-01-31 12:00:00 UTC"
std::string Moment(std::int64_t time)
{
    using namespace std::chrono;
    const auto seconds = floor<std::chrono::seconds>(sys_time<milliseconds>(milliseconds(time)));
    const auto day = floor<days>(seconds);
    const year_month_day date(day);
    const hh_mm_ss clock(seconds - day);
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d UTC",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
    return text.data();
}

}  // namespace

std::string RenderNote(const SupportNote& note)
{
    return "<p class=\"support\">For support: <b>" +
           Escape(note.session + " · " + Moment(note.time) + " · " + note.version) +
           "</b> <button type=\"button\" onclick=\"" + Escape(CopyNote) +
           "\">Copy for support</button></p>\n";
}

}  // namespace kel
