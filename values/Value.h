#pragma once

namespace kel {

/// A detected fact. Each kind of fact has a class of its own, derived directly from this one.
class Value {
public:
    virtual ~Value() = default;

    /// The text form, zero-terminated. Copy it at once: some classes share one buffer among all objects.
    virtual const wchar_t* ToString() const = 0;

protected:
    Value() = default;
    Value(const Value&) = default;
    Value& operator=(const Value&) = default;
};

}  // namespace kel
