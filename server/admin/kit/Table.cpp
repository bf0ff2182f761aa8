#include "server/admin/kit/Table.h"

namespace kel::server {

Table::Table(std::string caption, std::vector<Column> columns, std::string kind)
    : caption(std::move(caption)), kind(std::move(kind)), columns(std::move(columns))
{
}

void Table::Add(const std::vector<Html>& cells)
{
    Html row;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Html::Attributes attributes;
        if (i == 0)
            attributes.emplace_back("scope", "row");
        else
            attributes.emplace_back("data-label", columns[i].name);
        if (columns[i].isNumber)
            attributes.emplace_back("class", "number");
        row += Html::Element(i == 0 ? "th" : "td", attributes, cells.at(i));
    }
    rows += Html::Element("tr", {}, row);
}

Html Table::Done(const Html& whenEmpty) const
{
    if (rows.IsEmpty())
        return Html::Element("p", {{"class", "empty"}}, whenEmpty);
    Html head;
    for (const Column& column : columns) {
        Html::Attributes attributes{{"scope", "col"}};
        if (column.isNumber)
            attributes.emplace_back("class", "number");
        head += Html::Element("th", attributes, column.name);
    }
    Html::Attributes attributes;
    if (!kind.empty())
        attributes.emplace_back("class", kind);
    return Html::Element(
        "table", attributes,
        {Html::Element("caption", {}, caption), Html::Element("thead", {}, Html::Element("tr", {}, head)),
         Html::Element("tbody", {}, rows)});
}

}  // namespace kel::server
