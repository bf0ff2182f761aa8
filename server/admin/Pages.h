#pragma once

#include "server/admin/login/AdminRequest.h"

// Every page of the administration, and the requests of programs. Routes.cpp has their addresses.
namespace kel::server {

/// The style sheet of all pages.
Answer ShowStyle(const AdminRequest& request);

/// The form to log in.
Answer ShowLogIn(const AdminRequest& request);
/// Begins a log-in; 403 for a wrong name or password, 429 after too many attempts.
Answer LogIn(const AdminRequest& request);
/// Ends the log-in.
Answer LogOut(const AdminRequest& request);

/// The products with the results of a period's sessions, and the newest reports.
Answer ShowOverview(const AdminRequest& request);
/// The names of the values that requirements can ask for.
Answer ShowValues(const AdminRequest& request);
/// The audit: which account did what.
Answer ShowAudit(const AdminRequest& request);

/// The list of reports, with filters, page by page.
Answer ShowReports(const AdminRequest& request);
/// All reports of the list with their values, as a file.
Answer DownloadReports(const AdminRequest& request);
/// One report: its sender, its verdicts, its values, and other reports of its machine.
Answer ShowReport(const AdminRequest& request);
/// A report's XML, as it arrived.
Answer DownloadReport(const AdminRequest& request);
/// Asks for confirmation before all reports of a report's session are deleted.
Answer AskToDeleteSession(const AdminRequest& request);
Answer DeleteSession(const AdminRequest& request);

/// The form to judge a file of a machine's values, without keeping it.
Answer ShowCheck(const AdminRequest& request);
/// Judges the file, and keeps it as a report if that is asked for.
Answer CheckFile(const AdminRequest& request);

/// A product's results in a period: over time, by version and by requirement, and the machines of its
/// visitors.
Answer ShowProduct(const AdminRequest& request);
/// Redirects to the requirements of a product that may not exist yet.
Answer BeginProduct(const AdminRequest& request);
/// A product's requirements: the versions and the draft, for editors in a form that changes it.
Answer ShowRequirements(const AdminRequest& request);
/// The text of one version.
Answer ShowVersion(const AdminRequest& request);

/// What differs between two versions, or a version and the draft.
Answer ShowVersionDifference(const AdminRequest& request);

/// The editor's buttons: checks, tries or saves the draft, adds a line to it, or asks before it is published
/// or dropped.
Answer EditDraft(const AdminRequest& request);
Answer PublishDraft(const AdminRequest& request);
Answer DropDraft(const AdminRequest& request);

/// GET /api/v1/reports: reports with their values, as JSON or CSV, with the filters of the page.
Answer ListReports(const AdminRequest& request);
/// GET /api/v1/reports/ID: one report with its values.
Answer ReadReport(const AdminRequest& request);
/// GET /api/v1/referrers: the products with the sessions of a period, by the version that judged them.
Answer ListReferrers(const AdminRequest& request);
/// GET /api/v1/referrers/NAME/draft: the draft's text; its revision is the ETag.
Answer ReadDraft(const AdminRequest& request);
/// PUT /api/v1/referrers/NAME/draft: replaces the draft of the revision in If-Match.
Answer WriteDraft(const AdminRequest& request);
/// POST /api/v1/referrers/NAME/publish: publishes the draft of the revision in If-Match.
Answer PublishRevision(const AdminRequest& request);

}  // namespace kel::server
