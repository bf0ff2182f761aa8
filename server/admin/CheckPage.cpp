#include <fmt/format.h>
#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ProductPages.h"
#include "server/admin/VerdictTable.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/base/Log.h"
#include "server/protocol/Intake.h"
#include "server/report/ReportFile.h"
#include "server/store/Audit.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"
#include "verdict/Catalogue.h"
#include "verdict/Rendering.h"
#include "verdict/files/EmptyValues.h"
#include "verdict/files/FileError.h"
#include "verdict/text/SessionNumber.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxRows = 2000;  // of the values that the page shows

Html ProductField(const std::vector<Product>& products, const std::string& chosen)
{
    Html options;
    for (const Product& product : products) {
        if (product.version == 0)
            continue;  // it has only a draft
        Html::Attributes attributes{{"value", product.referrer}};
        if (product.referrer == chosen)
            attributes.emplace_back("selected", "");
        options += Html::Element("option", attributes, NameAndTitle(product.referrer, product.title));
    }
    return Html::Element("div", {{"class", "field"}},
                         {Html::Element("label", {{"for", "referrer"}}, "Product"),
                          Html::Element("select", {{"id", "referrer"}, {"name", "referrer"}}, options)});
}

Html KeepField()
{
    return Html::Element(
        "div", {{"class", "field"}},
        {Html::Element("input", {{"id", "keep"}, {"name", "keep"}, {"type", "checkbox"}, {"value", "yes"}}),
         Html::Element("label", {{"for", "keep"}}, "Keep as a report")});
}

Html FileForm(const AdminRequest& request, const std::string& referrer, const std::string& version)
{
    const std::vector<Product> products = RequirementSets(request.database).Products();
    if (std::all_of(products.begin(), products.end(), [](const Product& one) { return one.version == 0; }))
        return Html::Element(
            "p", {{"class", "empty"}},
            {"A file is judged by a product's published requirements, and there are none yet. ",
             Link("/", "To the overview, where products begin"), "."});
    Html fields = Hidden("token", request.login.formToken) +
                  Field("File", "file", "", "file", {{"required", ""}, {"accept", ".json,.xml"}}) +
                  ProductField(products, referrer) +
                  Field("Version; the newest when empty", "version", version);
    if (request.IsEditor())
        fields += KeepField();
    fields += Html::Element("div", {{"class", "field"}}, Button("Check", "primary"));
    return Html::Element("p", {{"class", "lead"}},
                         "A file that \"kel report\" wrote, the XML of a report, or this service's export. "
                         "It is judged here and not stored, unless you ask for that.") +
           Html::Element("form",
                         {{"method", "post"},
                          {"action", "/check"},
                          {"enctype", "multipart/form-data"},
                          {"class", "card filter"}},
                         fields);
}

PublishedSet FindSet(Database& database, const std::string& referrer, const std::string& version)
{
    if (const std::string_view number = Trim(version); !number.empty()) {
        for (const PublishedSet& set : RequirementSets(database).Versions(referrer)) {
            if (set.version == WholeNumber(number))
                return set;
        }
        throw Fault(404, "The product has no such version.");
    }
    const auto newest = RequirementSets(database).Newest(referrer);
    if (!newest)
        throw Fault(404, "There is no such product, or it has only a draft.");
    return *newest;
}

Html FileFacts(const Snapshot& snapshot)
{
    Html facts = DescriptionEntry("Session", TextOrDash(snapshot.Text(SessionGroup)));
    for (const auto& [name, text] :
         {std::pair("Session's number", SessionNumber(snapshot.Text(SessionGroup))),
          std::pair("Machine", snapshot.Text(Report::Machine)), std::pair("Written", snapshot.time),
          std::pair("Version of the program", snapshot.version), std::pair("Windows", snapshot.windows),
          std::pair("Host program", snapshot.host), std::pair("Product in the file", snapshot.product)})
        facts += DescriptionEntry(name, TextOrDash(text));
    if (snapshot.verdict)
        facts += DescriptionEntry("Verdict in the file", Mark(snapshot.verdict->total));
    return Html::Element("dl", {{"class", "facts card"}}, facts);
}

Html EmptyValuesTable(const std::vector<EmptyValue>& values)
{
    Table table("Empty values of the lines that do not pass", {{"Line"}, {"Value"}, {"Id"}, {"Why"}},
                "dense");
    for (const EmptyValue& value : values)
        table.Add(
            {Html::Stored(value.label), value.name, std::to_string(value.group), Html::Stored(value.reason)});
    return table.Done("No value of a line that does not pass is empty.");
}

std::string AreaAndName(const Fact& fact)
{
    const CatalogueValue* known = FindCatalogueValue(fact.id);
    return known ? std::string(known->Area()) + ": " + NameOf(fact) : NameOf(fact);
}

Html FactsTable(const Snapshot& snapshot)
{
    Table table("Values in the file", {{"Id"}, {"What"}, {"Value"}, {"Why it is empty"}}, "dense");
    std::size_t count = 0;
    for (const std::vector<Fact>* list : {&snapshot.facts, &snapshot.missing}) {
        for (const Fact& fact : *list) {
            if (++count <= MaxRows)
                table.Add({std::to_string(fact.id), AreaAndName(fact), TextOrDash(fact.text),
                           fact.text.empty() ? TextOrDash(fact.reason) : Html()});
        }
    }
    Html values = table.Done("The file has no value.");
    if (count > MaxRows)
        values += Html::Element("p", {},
                                fmt::format("The first {} of {} values.", Grouped(MaxRows),
                                            Grouped(static_cast<std::int64_t>(count))));
    return values;
}

/// Stores what the file has as a report with its verdict, and returns the report's id. A file that kel wrote
/// without a service has no session, and gets one.
std::int64_t Keep(const AdminRequest& request, Snapshot snapshot, const PublishedSet& set,
                  const Verdict& verdict)
{
    if (!request.IsEditor())
        throw Fault(403, "Only editors may keep a file as a report.");
    if (snapshot.Text(SessionGroup).empty()) {
        std::erase_if(snapshot.facts, [](const Fact& fact) { return fact.id == SessionGroup; });
        snapshot.facts.push_back({SessionGroup, 0, "kept " + IsoTime(Now()), ""});
    }
    NewReport report = Intake::Check(WriteReport(snapshot)).entry;
    if (report.referrer.empty())
        report.referrer = request.form.Text("referrer");
    const std::int64_t id = Reports(request.database).Add(report);
    Verdicts(request.database)
        .Save({id, set.id, "requirements", verdict.total, RenderLines(verdict), ResultLetters(verdict)});
    Audit(request.database).Add(request.login.account, "kept a file", fmt::format("report {}", id));
    Log(Level::Info, "file-kept", {{"account", request.login.account}, {"report", std::to_string(id)}});
    return id;
}

}  // namespace

Answer ShowCheck(const AdminRequest& request)
{
    return Page(request, "Check a file",
                FileForm(request, request.Query("referrer"), request.Query("version")));
}

Answer CheckFile(const AdminRequest& request)
{
    const std::string &referrer = request.form.Text("referrer"), &version = request.form.Text("version"),
                      &file = request.form.File("file");
    Html content = FileForm(request, referrer, version);
    if (file.empty())
        return Page(request, "Check a file", Notice("bad", "Choose a file that is not empty.") + content,
                    422);
    try {
        const Snapshot snapshot = ReadReportFile(file);
        const PublishedSet set = FindSet(request.database, referrer, version);
        const auto requirements = Requirements::ReadStored(RequirementSets(request.database).Text(set.id));
        if (!requirements)
            throw Fault(404, "This version's requirements cannot be read by this program.");
        const Verdict verdict = Judge(*requirements, snapshot.Lookup());
        if (request.form.Text("keep") == "yes")
            return Redirect(ReportPath(Keep(request, snapshot, set, verdict)));
        content += Html::Element("h2", {}, "The file") + FileFacts(snapshot) +
                   Html::Element("h2", {}, "Verdict") +
                   VerdictTable(fmt::format("By version {} of {}; nothing is stored", set.version,
                                            NameAndTitle(referrer, requirements->title.Default())),
                                verdict) +
                   EmptyValuesTable(FindEmptyValues(*requirements, verdict, snapshot)) +
                   Html::Element("h2", {}, "Values") + FactsTable(snapshot);
        return Page(request, "Check a file", content);
    } catch (const FileError& error) {
        return Page(request, "Check a file", Notice("bad", error.what()) + content, 422);
    }
}

}  // namespace kel::server
