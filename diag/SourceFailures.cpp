#include "diag/SourceFailures.h"

namespace kel {

void AddFailures(std::vector<SourceFailure>& failures, const std::vector<SourceFailure>& others)
{
    failures.insert(failures.end(), others.begin(), others.end());
}

void CollectFailures(std::vector<SourceFailure>& failures, const std::function<void()>& work)
{
    Failures found;
    {
        const FailureScope scope;
        work();
        found = scope.Found();
    }
    AddFailures(failures, found.sources);
    if (found.hasException)
        FailureScope::NoteException();
}

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
