#include "server/admin/login/Secrets.h"

#include <sodium.h>

#include <array>
#include <stdexcept>

namespace kel::server {

namespace {

/// Initializes the library, once per process.
void Start()
{
    static const bool started = sodium_init() >= 0;
    if (!started)
        throw std::runtime_error("libsodium does not start");
}

const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

std::string RandomText()
{
    constexpr int Variant = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
    Start();
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    std::array<char, sodium_base64_ENCODED_LEN(32, Variant)> text{};
    return sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), Variant);
}

std::string HashOf(std::string_view secret, std::string_view key)
{
    Start();
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    if (crypto_generichash(hash.data(), hash.size(), Bytes(secret), secret.size(), Bytes(key), key.size()) !=
        0)
        throw std::runtime_error("a text cannot be hashed");
    std::array<char, 2 * crypto_generichash_BYTES + 1> text{};
    return sodium_bin2hex(text.data(), text.size(), hash.data(), hash.size());
}

bool EqualsInConstantTime(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && sodium_memcmp(left.data(), right.data(), left.size()) == 0;
}

std::string HashPassword(std::string_view password)
{
    Start();
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    if (crypto_pwhash_str_alg(hash.data(), password.data(), password.size(),
                              crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE,
                              crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::runtime_error("there is no memory to hash a password");
    return hash.data();
}

bool IsPassword(const std::string& hash, std::string_view password)
{
    Start();
    return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

}  // namespace kel::server
