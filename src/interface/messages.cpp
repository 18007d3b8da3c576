#include "interface/messages.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

#include "base/caller_memory.h"
#include "base/messages.h"

namespace lagestatus {
namespace {

// Writes a text into the caller's buffer, unit by unit.
class TextWriter {
  public:
    explicit TextWriter(lagestatus_char* callersBuffer) noexcept : buffer(callersBuffer) {}

    void put(std::u16string_view text) noexcept {
        for (const char16_t unit : text) {
            store<lagestatus_char>(buffer, length++, unit);
        }
    }
    void put_name(const lagestatus_char* name) noexcept {
        for (std::size_t at = 0; load<lagestatus_char>(name, at) != u'\0'; ++at) {
            store<lagestatus_char>(buffer, length++, load<lagestatus_char>(name, at));
        }
    }
    void put_number(int number) noexcept {
        std::array<char, 16> digits = {};
        const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
        for (const char* digit = digits.data(); digit != written.ptr; ++digit) {
            store<lagestatus_char>(buffer, length++, static_cast<unsigned char>(*digit));
        }
    }
    void end() noexcept { store<lagestatus_char>(buffer, length, u'\0'); }

  private:
    lagestatus_char* buffer;
    std::size_t length = 0;
};

}  // namespace

void write_message(Status code, const lagestatus_char* fileName, lagestatus_char* buffer) noexcept {
    const Message message = message_of(code);
    TextWriter out(buffer);
    out.put(message.before);
    if (message.namesFile) {
        out.put_name(fileName);
    }
    out.put(message.behind);
    if (message.number > 0) {
        out.put_number(message.number);
    }
    out.put(message.end);
    out.end();
}

}  // namespace lagestatus
