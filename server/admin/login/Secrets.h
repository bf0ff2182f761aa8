#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// 32 random bytes as letters, digits, hyphens and underscores. Like all functions here, throws
/// std::runtime_error when the library cannot start.
std::string RandomText();

/// A hash of a text from RandomText, from which the secret cannot be found. With a key, only its holder can
/// make the hash.
std::string HashOf(std::string_view secret, std::string_view key = {});

/// Whether the texts are the same, in a time that does not depend on where they differ.
bool EqualsInConstantTime(std::string_view left, std::string_view right);

inline constexpr std::size_t MaxPasswordBytes = 1000;

/// A hash of a password (Argon2id, 64 MB, with a salt of its own).
std::string HashPassword(std::string_view password);

/// Whether the hash is of that password.
bool IsPassword(const std::string& hash, std::string_view password);

}  // namespace kel::server
