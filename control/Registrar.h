#pragma once

#include <windows.h>

#include <stdexcept>
#include <vector>

#include "control/RegistrationScript.h"

namespace kel {

/// A registration that failed.
class RegistrationError : public std::runtime_error {
public:
    RegistrationError(HRESULT newResult, const char* message) : std::runtime_error(message), result(newResult)
    {
    }

    HRESULT Result() const { return result; }

private:
    HRESULT result;
};

/// @throws RegistrationError when the result is a failure
void CheckRegistration(HRESULT result, const char* message);

/// Applies a registration script to the registry, and removes what it wrote.
class Registrar {
public:
    /// @param rootKey the key below which the script's keys are written; must outlive this object
    explicit Registrar(HKEY rootKey) : root(rootKey) {}

    /// Writes the script's keys and values. When a step fails, the keys that it wrote are removed, including
    /// what an earlier registration had left in them.
    /// @throws RegistrationError
    void Register(const std::vector<ScriptKey>& keys) const;

    /// Removes the keys that the script wrote: forced ones with their contents, others when nothing is left
    /// below them. Values in a key that stays are kept.
    /// @throws RegistrationError
    void Unregister(const std::vector<ScriptKey>& keys) const;

private:
    HKEY root;
};

}  // namespace kel
