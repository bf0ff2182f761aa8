#pragma once

#include <string>
#include <string_view>

#include "server/admin/kit/Html.h"
#include "server/admin/login/AdminRequest.h"
#include "server/store/DayCounts.h"

namespace kel::server {

/// The days that figures or a list cover, as the address of a page says: period=today, 7d, 30d, 90d or all,
/// or from=2026-03-01 and until=2026-03-31, which include both days. Days are UTC.
class Period {
public:
    static constexpr std::string_view All = "all", Usual = "30d";

    /// The period that the address names, or else the one with the name `usual`.
    static Period Read(const AdminRequest& request, std::string_view usual);
    /// The usual period of that name, which exists.
    static Period Of(std::string_view name);
    /// What is wrong with the parameters of an address that name a period, as a sentence; empty when nothing
    /// is.
    static std::string Problem(const AdminRequest& request);
    /// One day, or several: until, and without, the day `until`.
    static Period Between(std::int64_t from, std::int64_t until);

    const Days& Range() const { return days; }
    bool IsAll() const { return name == All; }
    /// The time when it begins, and the one when it ends; 0 where it is open.
    std::int64_t FromTime() const { return days.from * DayLength; }
    std::int64_t UntilTime() const { return isOpen ? 0 : days.until * DayLength; }
    /// Whether there is a period before with as many days: not when an end is open, or when there is no day.
    bool HasBefore() const { return days.from > 0 && !isOpen && days.until > days.from; }
    /// The same number of days before.
    Period Before() const { return Between(days.from - (days.until - days.from), days.from); }
    /// "in the last 7 days", "on 2026-03-01"; "so far" for all days.
    std::string Text() const;
    /// What a period before is called: "the 7 days before".
    std::string BeforeText() const;
    /// The part of an address that names it: "period=7d", "from=2026-03-01&until=2026-03-31".
    std::string Query() const;
    /// The same as hidden fields of a form.
    Html HiddenFields() const;
    /// The day for a date field; empty where the period is open.
    std::string From() const;
    std::string Until() const;

    /// Links to the usual periods of the page with that path; `others` are further parameters, "&find=x".
    Html Links(const std::string& path, const std::string& others = {}) const;
    /// The same, and a form for any other period.
    Html Choice(const std::string& path) const;

private:
    Days days;
    std::string name;     // empty when the address gives the days
    bool isOpen = false;  // to the future
};

}  // namespace kel::server
