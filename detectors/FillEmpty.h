#pragma once

#include <initializer_list>
#include <string>

namespace kel {

/// Merges two records of the same kind: each of the fields that is empty in the target takes the source's
/// text.
template <typename Record>
void FillEmpty(Record& target, const Record& source, std::initializer_list<std::wstring Record::*> fields)
{
    for (const auto field : fields) {
        if ((target.*field).empty())
            target.*field = source.*field;
    }
}

}  // namespace kel
