#include "program/embedding/Lifetime.h"

namespace kel::program {

bool Lifetime::IsOver(Time now, bool isInUse, bool isAbandoned)
{
    if (!isInUse)
        return now - lastUse >= (wasUsed ? Linger : MaxWaitForUse);
    lastUse = now;
    wasUsed = true;
    return isAbandoned;
}

}  // namespace kel::program
