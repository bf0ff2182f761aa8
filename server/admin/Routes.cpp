#include "server/admin/Routes.h"

#include "server/admin/Pages.h"

namespace kel::server {

namespace {

constexpr std::string_view ReportParameters[] = {
    "after",   "count",   "format",  "all",    "referrer", "session", "user",  "machine",
    "failing", "verdict", "version", "line",   "result",   "once",    "value", "comparison",
    "text",    "of",      "outcome", "period", "from",     "until"};
constexpr std::string_view PeriodParameters[] = {"period", "from", "until"};

constexpr Route Rows[] = {
    {"GET", "/style.css", Access::Open, ShowStyle},
    {"GET", "/login", Access::Open, ShowLogIn},
    {"POST", "/login", Access::Open, LogIn},
    {"POST", "/logout", Access::Reader, LogOut},
    {"GET", "/", Access::Reader, ShowOverview},
    {"GET", "/values", Access::Reader, ShowValues},
    {"GET", "/audit", Access::Editor, ShowAudit},
    {"GET", "/reports", Access::Reader, ShowReports},
    {"GET", "/download", Access::Reader, DownloadReports},
    {"GET", "/reports/*", Access::Reader, ShowReport},
    {"GET", "/reports/*/xml", Access::Reader, DownloadReport},
    {"GET", "/reports/*/delete", Access::Editor, AskToDeleteSession},
    {"POST", "/reports/*/delete", Access::Editor, DeleteSession},
    {"GET", "/check", Access::Reader, ShowCheck},
    {"POST", "/check", Access::Reader, CheckFile},
    {"GET", "/new", Access::Editor, BeginProduct},
    {"GET", "/products/*", Access::Reader, ShowProduct},
    {"GET", "/products/*/version", Access::Reader, ShowVersion},
    {"GET", "/products/*/difference", Access::Reader, ShowVersionDifference},
    {"GET", "/products/*/requirements", Access::Reader, ShowRequirements},
    {"POST", "/products/*/requirements", Access::Editor, EditDraft},
    {"POST", "/products/*/publish", Access::Editor, PublishDraft},
    {"POST", "/products/*/drop", Access::Editor, DropDraft},
    {"GET", "/api/v1/reports", Access::Reader, ListReports, ReportParameters},
    {"GET", "/api/v1/reports/*", Access::Reader, ReadReport},
    {"GET", "/api/v1/referrers", Access::Reader, ListReferrers, PeriodParameters},
    {"GET", "/api/v1/referrers/*/draft", Access::Reader, ReadDraft},
    {"PUT", "/api/v1/referrers/*/draft", Access::Editor, WriteDraft},
    {"POST", "/api/v1/referrers/*/publish", Access::Editor, PublishRevision},
};

}  // namespace

const std::span<const Route> Routes = Rows;

}  // namespace kel::server
