#include "bulk/texts.h"

#include "base/messages.h"

namespace lagestatus {
namespace {

// Of characters that ISO 8859-1 has.
std::string utf8_of(std::u16string_view units) {
    std::string text;
    for (const char16_t unit : units) {
        text += static_cast<char>(static_cast<unsigned char>(unit));
    }
    return lagestatus::utf8_of(text);
}

}  // namespace

std::string utf8_of(std::string_view latin1, std::string_view replacement) {
    std::string text;
    for (const char character : latin1) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || (byte >= 0x7F && byte < 0xA0)) {
            text += replacement;
        } else if (byte < 0x80) {
            text += character;
        } else {
            text += static_cast<char>(0xC0U | (byte >> 6U));
            text += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return text;
}

std::string message_text(Status status, std::string_view fileName) {
    const Message parts = message_of(status);
    return utf8_of(parts.before) + std::string(parts.namesFile ? fileName : "") + utf8_of(parts.behind) +
           (parts.number > 0 ? std::to_string(parts.number) : "") + utf8_of(parts.end);
}

}  // namespace lagestatus
