#include "program/host/Message.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace kel::program {

namespace {

constexpr std::size_t MaxMembers = 8;

/// Takes the parser's events; each false ends the parsing, so nothing is kept of what a message cannot have.
class MessageReader : public nlohmann::json_sax<nlohmann::json> {
public:
    Message message;

    bool null() override { return false; }
    bool boolean(bool) override { return false; }
    bool number_integer(number_integer_t) override { return false; }
    bool number_unsigned(number_unsigned_t) override { return false; }
    bool number_float(number_float_t, const string_t&) override { return false; }
    bool binary(binary_t&) override { return false; }
    bool start_array(std::size_t) override { return false; }
    bool end_array() override { return false; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override
    {
        return false;
    }

    bool start_object(std::size_t) override { return !std::exchange(isOpen, true); }
    bool end_object() override { return true; }

    bool key(string_t& name) override
    {
        const auto [member, isNew] = message.try_emplace(name);
        current = &member->second;
        return isNew && message.size() <= MaxMembers;
    }

    bool string(string_t& text) override
    {
        if (current == nullptr)
            return false;
        *std::exchange(current, nullptr) = std::move(text);
        return true;
    }

private:
    bool isOpen = false;
    std::string* current = nullptr;  // the member whose text follows
};

}  // namespace

std::optional<Message> ParseMessage(std::string_view text)
{
    MessageReader reader;
    if (!nlohmann::json::sax_parse(text, &reader))
        return std::nullopt;
    return std::move(reader.message);
}

}  // namespace kel::program
