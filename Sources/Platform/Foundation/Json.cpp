#include "Platform/Foundation/Json.h"

#include <nlohmann/json.hpp>

namespace platform {

namespace {

using Json = nlohmann::json;

enum class OtherValues { refused, skipped };

// Collects the members while the text is read: nothing else is kept, and the reading stops at the first
// value that is refused, so the memory is bounded whatever the text is.
class MemberReader final : public nlohmann::json_sax<Json> {
public:
    explicit MemberReader(OtherValues otherValues) : otherValues_(otherValues) {}

    std::map<std::string, std::string> members;

    bool null() override { return other(); }
    bool boolean(bool /*value*/) override { return other(); }
    bool number_integer(number_integer_t /*value*/) override { return other(); }
    bool number_unsigned(number_unsigned_t /*value*/) override { return other(); }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return other(); }
    bool binary(binary_t& /*value*/) override { return other(); }

    bool string(string_t& value) override {
        if (depth_ == 0)
            return false;
        if (depth_ == 1)
            members.insert_or_assign(key_, std::move(value));
        return true;
    }

    bool key(string_t& name) override {
        if (depth_ == 1)
            key_ = std::move(name);
        return true;
    }

    bool start_object(std::size_t /*size*/) override {
        if (depth_ > 0 && !other())
            return false;
        ++depth_;
        return true;
    }

    bool start_array(std::size_t /*size*/) override {
        if (!other())
            return false;
        ++depth_;
        return true;
    }

    bool end_object() override {
        --depth_;
        return true;
    }

    bool end_array() override {
        --depth_;
        return true;
    }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) override {
        return false;
    }

private:
    bool other() {
        if (depth_ == 0 || otherValues_ == OtherValues::refused)
            return false;
        // Of members with the same name the last one counts, also when it is not a string.
        if (depth_ == 1)
            members.erase(key_);
        return true;
    }

    OtherValues otherValues_;
    std::size_t depth_ = 0;
    std::string key_;
};

std::optional<std::map<std::string, std::string>> decode(std::string_view bytes, OtherValues otherValues) {
    // The library takes a zero byte for the end of the text, and would not see what follows.
    if (bytes.find('\0') != std::string_view::npos)
        return std::nullopt;
    MemberReader reader(otherValues);
    if (!Json::sax_parse(bytes, &reader))
        return std::nullopt;
    return std::move(reader.members);
}

} // namespace

std::optional<std::map<std::string, std::string>> decodeStringDictionary(std::string_view bytes) {
    return decode(bytes, OtherValues::refused);
}

std::optional<std::map<std::string, std::string>> decodeStringMembers(std::string_view bytes) {
    return decode(bytes, OtherValues::skipped);
}

std::string encodeStringDictionary(const std::map<std::string, std::string>& dictionary) {
    return Json(dictionary).dump();
}

bool isTooDeep(std::string_view json) {
    constexpr int mostLevels = 32;
    int levels = 0;
    bool isInString = false;
    for (std::size_t position = 0; position < json.size(); ++position) {
        const char byte = json[position];
        if (byte == '"')
            isInString = !isInString;
        else if (byte == '\\')
            ++position; // Whatever is escaped.
        else if (!isInString && (byte == '[' || byte == '{') && ++levels > mostLevels)
            return true;
        else if (!isInString && (byte == ']' || byte == '}'))
            --levels;
    }
    return false;
}

} // namespace platform
