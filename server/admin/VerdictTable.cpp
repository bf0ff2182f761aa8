#include "server/admin/VerdictTable.h"

#include "server/admin/Layout.h"
#include "server/admin/kit/Table.h"
#include "server/report/FailingFirst.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxShownBytes = 1000;  // of a text that a page shows

}  // namespace

Html VerdictTable(const std::string& caption, const Verdict& verdict)
{
    Table table(caption, {{"Requirement"}, {"Needed"}, {"Found"}, {"Result"}}, "dense");
    for (const VerdictLine* line : FailingFirst(verdict)) {
        Html result = Mark(line->result);
        if (line->result != Result::Pass && !line->advice.empty())
            result += Html::Element("div", {}, Html::Stored(line->advice));
        table.Add({LineLabel(line->label, line->recommended), Html::Stored(line->needed),
                   TextOrDash(line->found), result});
    }
    return Html::Element("p", {}, {"Result: ", Mark(verdict.total), ". " + CountText(verdict)}) +
           table.Done("The requirements have no line.");
}

Html TextOrDash(const std::string& text)
{
    return text.empty() ? Html("–") : Html::Stored(Shortened(text, MaxShownBytes));
}

Html DescriptionEntry(const char* name, const Html& value)
{
    return Html::Element("dt", {}, name) + Html::Element("dd", {}, value);
}

}  // namespace kel::server
