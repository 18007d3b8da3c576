#include "keeper/parameter_text.h"

#include <algorithm>
#include <cstddef>

#include "system/text.h"

namespace cli {
namespace {

// Fields of a datum set; those of the intermediate set follow those of the main one.
constexpr std::size_t ofSet = datumSlots.size() / 2;

// What stands above each data line; those of the intermediate set are the main set's with an addition.
constexpr std::array<const char*, parameterFields.size() - ofSet> labels = {
    "Lagestatus",
    "Bezeichnung des Systems",
    "Bezeichnung des Ellipsoids (höchstens 10 Zeichen; beginnt mit \"Bessel\": Besseldatum)",
    "Abbildungsart",
    "Breite des Nullpunkts in Grad",
    "Länge des Nullpunkts in Grad",
    "Additionskonstante in Y in Metern",
    "Additionskonstante in X in Metern",
    "Dekadische Ergänzung in Metern (0: keine)",
    "Maßstab des Meridians",
    "Verschiebung in Y in Metern",
    "Verschiebung in X in Metern",
    "Verdrehung (Koeffizient ohne Einheit)",
    "Zweite Verschiebung in Y in Metern",
    "Zweite Verschiebung in X in Metern",
    "Nullpunktskoordinate in Y in Metern",
    "Nullpunktskoordinate in X in Metern",
    "Maßstab der ebenen Koordinaten (1: keiner)",
    "Große Halbachse in Metern",
    "Kleine Halbachse in Metern",
    "Translation in X in Metern",
    "Translation in Y in Metern",
    "Translation in Z in Metern",
    "Rotation um X im Bogenmaß",
    "Rotation um Y im Bogenmaß",
    "Rotation um Z im Bogenmaß",
    "Maßstab",
    "Nullpunktreduktion in X in Metern",
    "Nullpunktreduktion in Y in Metern",
    "Nullpunktreduktion in Z in Metern"};

// Puts a set where the fields of a set lead, the first of which is at begin.
void put_set(const Similarity& set, std::size_t begin, ParameterArray& parameters) {
    const auto& [translation, rotation, scale, reduction] = set;
    const std::array<double, ofSet> values = {translation[0], translation[1], translation[2], rotation[0],
                                              rotation[1],    rotation[2],    scale,          reduction[0],
                                              reduction[1],   reduction[2]};
    for (std::size_t at = 0; at < ofSet; ++at) {
        parameters.at(datumSlots.at(begin + at)) = values.at(at);
    }
}

// The slots of one column, latitudes in degrees as in the file.
ParameterArray parameters_of(const ParameterText& content, const DatumSets& step) {
    ParameterArray parameters = {};
    parameters[slot::latitudeOfOrigin] = content.latitudeOfOrigin;
    parameters[slot::additiveY] = content.additiveY;
    parameters[slot::additiveX] = content.additiveX;
    parameters[slot::meridianScale] = content.meridianScale;
    parameters[slot::planeScale] = 1.0;
    parameters[slot::semiMajorAxis] = content.semiMajorAxis;
    parameters[slot::semiMinorAxis] = content.semiMinorAxis;
    put_set(step.main, 0, parameters);
    put_set(step.intermediate, ofSet, parameters);
    return parameters;
}

std::string comments_of(const std::vector<std::string>& texts) {
    std::string lines;
    for (const std::string& text : texts) {
        lines += "# " + text + '\n';
    }
    return lines;
}

}  // namespace

bool Similarity::is_seen_as_intermediate() const {
    constexpr std::array<double, 3> none = {};
    return translation != none || rotation != none;
}

Similarity main_set_of(const SystemDescription& system) {
    const auto value = [&system](std::size_t at) { return system.parameters.at(datumSlots.at(at)); };
    return {{value(0), value(1), value(2)},
            {value(3), value(4), value(5)},
            value(6),
            {value(7), value(8), value(9)}};
}

void set_main_set(SystemDescription& system, const Similarity& set) {
    put_set(set, 0, system.parameters);
}

std::string text_of(const ParameterText& content) {
    const ParameterArray into = parameters_of(content, content.intoBessel);
    const ParameterArray out = parameters_of(content, content.outOfBessel);
    const auto valueOf = [&](const ParameterField& field) {
        switch (field.scan) {
            case ParameterScan::code:
                return std::to_string(content.code);
            case ParameterScan::systemName:
                return '"' + content.name + '"';
            case ParameterScan::ellipsoidName:
                return '"' + content.ellipsoid + '"';
            case ParameterScan::kind:
                return '"' + std::string(kind_name(content.kind)) + '"';
            case ParameterScan::longitude:
                return content.longitudeOfOrigin;
            case ParameterScan::number:
                break;
            case ParameterScan::columns: {
                constexpr std::size_t columnWidth = 25;
                std::string value = data_text(into.at(field.slot));
                value.resize(std::max(columnWidth, value.size() + 1), ' ');
                return value + data_text(out.at(field.slot));
            }
        }
        return data_text(into.at(field.slot));
    };
    std::string text = comments_of(content.headComments);
    text += "# Jede Zeile, die mit \"#\" beginnt, ist Kommentar. Zeichensatz ISO 8859-1.\n\n";
    for (std::size_t at = 0; at < parameterFields.size(); ++at) {
        const ParameterField& field = parameterFields.at(at);
        const bool ofIntermediate = at >= labels.size();
        if (field.scan == ParameterScan::longitude) {
            text += comments_of(content.originComments);
        } else if (field.slot == slot::semiMajorAxis) {
            text += comments_of(content.ellipsoidComments);
        } else if (field.failure == status::firstTwoColumns) {
            text += '\n' + comments_of(content.datumComments) +
                    "# Ab hier zwei Spalten: 1. vom System ins Besseldatum, 2. vom Besseldatum ins System.\n";
        }
        text += "# " + std::to_string(at + 1) + ' ' + labels.at(ofIntermediate ? at - ofSet : at) +
                (ofIntermediate ? " zum Zwischensystem" : "") + '\n' + valueOf(field) + '\n';
    }
    return text;
}

SystemDescription system_of(const std::string& text, int code, Column column) {
    const std::string bytes = latin1(text).value();
    LineReader lines(bytes);
    SystemDescription system;
    (void)read_parameters(lines, column, code, system);
    return system;
}

}  // namespace cli
