#include "keeper/parameter_text.h"

#include <algorithm>
#include <cstddef>

#include "keeper/data_lines.h"
#include "system/numbers.h"

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

std::string in_quotes(const std::string& text) {
    return '"' + text + '"';
}

}  // namespace

bool Similarity::is_seen_as_intermediate() const {
    constexpr std::array<double, 3> none = {};
    return translation != none || rotation != none;
}

Similarity main_set_of(const System& system) {
    const auto value = [&system](std::size_t at) { return system.parameters.at(slots::datumSets.at(at)); };
    return {{value(0), value(1), value(2)},
            {value(3), value(4), value(5)},
            value(6),
            {value(7), value(8), value(9)}};
}

void set_main_set(System& system, const Similarity& set) {
    const SetValues values = values_of(set);
    for (std::size_t at = 0; at < values.size(); ++at) {
        system.parameters.at(slots::datumSets.at(at)) = values.at(at);
    }
}

std::string text_of(const ParameterText& content) {
    Writer file;
    file.comments(content.headComments);
    file.comment("Jede Zeile, die mit \"#\" beginnt, ist Kommentar. Zeichensatz ISO 8859-1.");
    file.empty_line();
    file.line("Lagestatus", std::to_string(content.code));
    file.line("Bezeichnung des Systems", in_quotes(content.name));
    file.line("Bezeichnung des Ellipsoids (höchstens 10 Zeichen; beginnt mit \"Bessel\": Besseldatum)",
              in_quotes(content.ellipsoid));
    file.line("Abbildungsart", in_quotes(content.kind));
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

System system_of(const std::string& text, Role role) {
    // Where the data lines 5 to 20 go; behind them come the datum sets.
    constexpr std::array<std::size_t, 16> slotOfLine = {0, 1, 9, 10, 4, 5, 6, 7, 8, 2, 3, 11, 12, 13, 24, 25};
    constexpr double radian = 0.0174532925199433;  // as the library has it

    System system;
    DataLines lines(text);
    lines.next();  // the code
    for (std::string* const words : {&system.name, &system.ellipsoid, &system.kind}) {
        lines.next();
        *words = quoted(lines.text()).value();
    }
    for (std::size_t index = 0; lines.next(); ++index) {
        const bool twoColumns = index >= slotOfLine.size();
        const std::size_t slot =
            twoColumns ? slots::datumSets.at(index - slotOfLine.size()) : slotOfLine.at(index);
        double& value = system.parameters.at(slot);
        Fields fields(lines.text());
        fields.number(value);
        if (twoColumns && role == Role::target) {
            fields.number(value);
        } else if (slot == slots::longitudeOfOrigin) {
            fields.integer(system.zoneNumber);
        }
    }
    system.parameters[slots::latitudeOfOrigin] *= radian;
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
