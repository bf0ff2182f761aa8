// Prints what the operating-system detector stores, one "id=text" line a value.
#include <cstdio>

#include "detectors/Detectors.h"
#include "support/TestSession.h"

int main()
{
    kel::test::TestSession session;
    kel::OS().Detect();
    for (const kel::SystemValue& value : session.values)
        std::printf("%ls=%ls\n", value.ID().Group().Text().c_str(), value.Text().c_str());
}
