#include "server/store/SqlConnection.h"

#include <exception>

#include "server/base/Fault.h"
#include "verdict/text/Utf8.h"

namespace kel::server {

SqlRows SqlConnection::Query(const std::string& sql, const std::vector<SqlValue>& values)
{
    for (const SqlValue& value : values) {
        const auto* text = std::get_if<std::string_view>(&value);
        if (text && !IsPlainText(*text))
            throw Fault(400, "a text is not UTF-8, or has a NUL");
    }
    return Run(sql, values);
}

SqlTransaction::~SqlTransaction()
{
    if (!open)
        return;
    try {
        connection.Execute("ROLLBACK");
    } catch (const std::exception&) {
        // The connection is lost, and the transaction with it.
    }
}

void SqlTransaction::Commit()
{
    connection.Execute("COMMIT");
    open = false;
}

}  // namespace kel::server
