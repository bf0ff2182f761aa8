#include "server/store/SqlConnection.h"

#include <exception>

namespace kel::server {

SqlTransaction::~SqlTransaction()
{
    if (!open)
        return;
    try {
        connection.Execute("ROLLBACK");
    } catch (const std::exception&) {
        // The connection has gone, and the transaction with it.
    }
}

void SqlTransaction::Commit()
{
    connection.Execute("COMMIT");
    open = false;
}

}  // namespace kel::server
