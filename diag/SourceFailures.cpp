#include "diag/SourceFailures.h"

namespace kel {

void FailureScope::Note(std::wstring_view source, std::uint32_t error) noexcept
{
    if (current == nullptr)
        return;
    try {
        current->found.sources.push_back({std::wstring(source), error});
    } catch (...) {
        current->found.hasException = true;
    }
}

void FailureScope::NoteException() noexcept
{
    if (current != nullptr)
        current->found.hasException = true;
}

void FailureScope::Note(const Failures& collected) noexcept
{
    for (const SourceFailure& failure : collected.sources)
        Note(failure.source, failure.error);
    if (collected.hasException)
        NoteException();
}

}  // namespace kel
