#include "parameter_text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

#include "numbers.h"

namespace cli {
namespace {

// Of the data lines 21 to 30; 31 to 40 have them with the addition of the intermediate system.
constexpr std::array<const char*, 10> datumLabels = {"Translation in X in Metern",
                                                     "Translation in Y in Metern",
                                                     "Translation in Z in Metern",
                                                     "Rotation um X im Bogenmaß",
                                                     "Rotation um Y im Bogenmaß",
                                                     "Rotation um Z im Bogenmaß",
                                                     "Maßstab",
                                                     "Nullpunktreduktion in X in Metern",
                                                     "Nullpunktreduktion in Y in Metern",
                                                     "Nullpunktreduktion in Z in Metern"};

using SetValues = std::array<double, datumLabels.size()>;

SetValues values_of(const Similarity& set) {
    const auto& [translation, rotation, scale, reduction] = set;
    return {translation[0], translation[1], translation[2], rotation[0],  rotation[1],
            rotation[2],    scale,          reduction[0],   reduction[1], reduction[2]};
}

class Writer {
  public:
    void comment(const std::string& text) { out += "# " + text + '\n'; }
    void comments(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            comment(text);
        }
    }
    void empty_line() { out += '\n'; }

    void line(const std::string& label, const std::string& value) {
        comment(std::to_string(++number) + ' ' + label);
        out += value + '\n';
    }

    // The lines of one set: the first column leads into the Bessel datum, the second out of it.
    void sets(const Similarity& first, const Similarity& second, const std::string& addition) {
        constexpr std::size_t columnWidth = 25;
        const SetValues left = values_of(first);
        const SetValues right = values_of(second);
        for (std::size_t at = 0; at < datumLabels.size(); ++at) {
            std::string value = data_text(left[at]);
            value.resize(std::max(columnWidth, value.size() + 1), ' ');
            line(datumLabels[at] + addition, value + data_text(right[at]));
        }
    }

    [[nodiscard]] const std::string& text() const { return out; }

  private:
    std::string out;
    int number = 0;
};

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

}  // namespace

bool Similarity::is_seen_as_intermediate() const {
    constexpr std::array<double, 3> none = {};
    return translation != none || rotation != none;
}

std::string text_of(const ParameterText& content) {
    Writer file;
    file.comments(content.headComments);
    file.comment("Jede Zeile, die mit \"#\" beginnt, ist Kommentar. Zeichensatz ISO 8859-1.");
    file.empty_line();
    file.line("Lagestatus", std::to_string(content.code));
    file.line("Bezeichnung des Systems", quoted(content.name));
    file.line("Bezeichnung des Ellipsoids (höchstens 10 Zeichen; beginnt mit \"Bessel\": Besseldatum)",
              quoted(content.ellipsoid));
    file.line("Abbildungsart", quoted(content.kind));
    file.line("Breite des Nullpunkts in Grad", content.latitudeOfOrigin);
    file.comments(content.originComments);
    file.line("Länge des Nullpunkts in Grad", content.longitudeOfOrigin);
    file.line("Additionskonstante in Y in Metern", data_text(content.additiveY));
    file.line("Additionskonstante in X in Metern", data_text(content.additiveX));
    file.line("Dekadische Ergänzung in Metern (0: keine)", data_text(0.0));
    file.line("Maßstab des Meridians", data_text(content.meridianScale));
    for (const char* const label :
         {"Verschiebung in Y in Metern", "Verschiebung in X in Metern",
          "Verdrehung (Koeffizient ohne Einheit)", "Zweite Verschiebung in Y in Metern",
          "Zweite Verschiebung in X in Metern", "Nullpunktskoordinate in Y in Metern",
          "Nullpunktskoordinate in X in Metern"}) {
        file.line(label, data_text(0.0));
    }
    file.line("Maßstab der ebenen Koordinaten (1: keiner)", data_text(1.0));
    file.comments(content.ellipsoidComments);
    file.line("Große Halbachse in Metern", data_text(content.semiMajorAxis));
    file.line("Kleine Halbachse in Metern", data_text(content.semiMinorAxis));
    file.empty_line();
    file.comments(content.datumComments);
    file.comment("Ab hier zwei Spalten: 1. vom System ins Besseldatum, 2. vom Besseldatum ins System.");
    file.sets(content.intoBessel.main, content.outOfBessel.main, "");
    file.sets(content.intoBessel.intermediate, content.outOfBessel.intermediate, " zum Zwischensystem");
    return file.text();
}

System system_of(std::string_view text, Role role) {
    // Where the data lines 5 to 40 go; Y comes before X in the parameter array.
    constexpr std::array<std::size_t, LAGESTATUS_PARAMETER_COUNT> slotOfLine = {
        0,  1,  9,  10, 4,  5,  6,  7,  8,  2,  3,  11, 12, 13, 24, 25, 15, 14,
        16, 17, 18, 19, 20, 22, 21, 23, 27, 26, 28, 29, 30, 31, 32, 34, 33, 35};
    constexpr std::size_t quotedLines = 4;  // the code and three texts
    constexpr std::size_t firstOfTwoColumns = 16;
    constexpr double radian = 0.0174532925199433;  // as the library has it

    System system;
    std::array<std::string, quotedLines> texts;
    std::size_t count = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (count < quotedLines) {
            texts.at(count++) = line;
            continue;
        }
        const std::size_t index = count++ - quotedLines;
        const std::size_t second = line.find_first_not_of(' ', line.find(' '));
        std::string_view used = line;
        if (index >= firstOfTwoColumns && role == Role::target) {
            used = line.substr(second);
        } else if (index == 1 && second != std::string_view::npos) {
            system.zoneNumber = integer_of(line.substr(second)).value();
        }
        system.parameters.at(slotOfLine.at(index)) = number_of(used.substr(0, used.find(' '))).value();
    }
    const auto unquoted = [](const std::string& quotedText) {
        return quotedText.substr(1, quotedText.size() - 2);
    };
    system.name = unquoted(texts[1]);
    system.ellipsoid = unquoted(texts[2]);
    system.kind = unquoted(texts[3]);
    system.parameters[0] *= radian;
    return system;
}

std::optional<std::string> latin1(std::string_view utf8) {
    const auto byte = [&utf8](std::size_t at) { return static_cast<unsigned char>(utf8[at]); };
    std::string text;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        if (byte(at) < 0x80) {
            text += utf8[at];
            continue;
        }
        // Characters up to U+00FF have two bytes, the first of them C2 or C3.
        if ((byte(at) & 0xFEU) != 0xC2 || at + 1 == utf8.size() || (byte(at + 1) & 0xC0U) != 0x80) {
            return std::nullopt;
        }
        const unsigned character = ((byte(at) & 0x03U) << 6U) | (byte(at + 1) & 0x3FU);
        text += static_cast<char>(static_cast<unsigned char>(character));
        ++at;
    }
    return text;
}

}  // namespace cli
