#include "base/messages.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lagestatus {
namespace {

// What stands before the file name. A text without a prefix is the whole message and holds no file name.
enum class Prefix : std::uint8_t {
    none,
    reading,
    parameterFile,
    definitionFile,
    file,
    entryCount,
};

constexpr std::array<std::u16string_view, 6> prefixes = {
    u"",
    u"Lesefehler in ",
    u"Parameterdatei ",
    u"Definitionsdatei ",
    u"Datei ",
    u"Lesen der Anzahl der Koordinatensysteme in der Definitionsdatei ",
};

struct Row {
    Status code;
    Prefix prefix;
    std::u16string_view text;  // behind the file name
};

// By code. Some of these codes no operation returns (112 to 114, 127, 128, 1049, 1050, 1149 to 1152, 1156 to
// 1161): a value that fails its check is reported under the code of reading it.
constexpr auto messages = std::to_array<Row>({
    {1, Prefix::definitionFile, u" kann zum Lesen nicht geöffnet werden"},
    {2, Prefix::entryCount, u""},
    {7, Prefix::parameterFile, u" existiert nicht"},
    {8, Prefix::reading, u" beim Lesen der Lagestatusangabe"},
    {9, Prefix::reading, u" beim Vergleichen der Lagestatusangaben"},
    {10, Prefix::reading, u" beim Lesen der Bezeichnung des Systems"},
    {11, Prefix::reading, u" beim Lesen der Bezeichnung des Ellipsoids"},
    {12, Prefix::reading, u" beim Lesen der Abbildungsart"},
    {13, Prefix::reading, u" beim Lesen der Breite des Nullpunkts"},
    {14, Prefix::reading, u" beim Lesen der Länge des Nullpunkts"},
    {15, Prefix::reading, u" beim Lesen der Additionskonstante in Y"},
    {16, Prefix::reading, u" beim Lesen der Additionskonstante in X"},
    {17, Prefix::reading, u" beim Lesen der dekadischen Ergänzung"},
    {18, Prefix::reading, u" beim Lesen des Maßstabs des Meridians"},
    {19, Prefix::reading, u" beim Lesen der Verschiebung in Y"},
    {20, Prefix::reading, u" beim Lesen der Verschiebung in X"},
    {21, Prefix::reading, u" beim Lesen der Verdrehung"},
    {22, Prefix::reading, u" beim Lesen der Verschiebung in Y"},
    {23, Prefix::reading, u" beim Lesen der Verschiebung in X"},
    {24, Prefix::reading, u" beim Lesen der Nullpunktskoordinate in Y"},
    {25, Prefix::reading, u" beim Lesen der Nullpunktskoordinate in X"},
    {26, Prefix::reading, u" beim Lesen des Maßstabs"},
    {27, Prefix::reading, u" beim Lesen der großen Halbachse"},
    {28, Prefix::reading, u" beim Lesen der kleinen Halbachse"},
    {29, Prefix::reading, u" beim Lesen der Translation in X"},
    {30, Prefix::reading, u" beim Lesen der Translation in Y"},
    {31, Prefix::reading, u" beim Lesen der Translation in Z"},
    {32, Prefix::reading, u" beim Lesen der Rotation um X"},
    {33, Prefix::reading, u" beim Lesen der Rotation um Y"},
    {34, Prefix::reading, u" beim Lesen der Rotation um Z"},
    {35, Prefix::reading, u" beim Lesen des Maßstabs"},
    {36, Prefix::reading, u" beim Lesen der Nullpunktreduktion in X"},
    {37, Prefix::reading, u" beim Lesen der Nullpunktreduktion in Y"},
    {38, Prefix::reading, u" beim Lesen der Nullpunktreduktion in Z"},
    {39, Prefix::reading, u" beim Lesen der Translation in X zum Zwischensystem"},
    {40, Prefix::reading, u" beim Lesen der Translation in Y zum Zwischensystem"},
    {41, Prefix::reading, u" beim Lesen der Translation in Z zum Zwischensystem"},
    {42, Prefix::reading, u" beim Lesen der Rotation um X zum Zwischensystem"},
    {43, Prefix::reading, u" beim Lesen der Rotation um Y zum Zwischensystem"},
    {44, Prefix::reading, u" beim Lesen der Rotation um Z zum Zwischensystem"},
    {45, Prefix::reading, u" beim Lesen des Maßstabs zum Zwischensystem"},
    {46, Prefix::reading, u" beim Lesen der Nullpunktreduktion in X zum Zwischensystem"},
    {47, Prefix::reading, u" beim Lesen der Nullpunktreduktion in Y zum Zwischensystem"},
    {48, Prefix::reading, u" beim Lesen der Nullpunktreduktion in Z zum Zwischensystem"},
    {90, Prefix::none, u"Keine Konvergenz bei der Berechnung der geographischen Koordinaten"},
    {92, Prefix::none, u"Keine Konvergenz bei der Berechnung der Undulation zur Reduzierung der Normalhöhe"},
    {93, Prefix::none, u"Zur Lagestatusangabe existiert keine Parameterdatei"},
    {100, Prefix::reading, u""},
    {112, Prefix::reading, u" beim Prüfen der Abbildungsart"},
    {113, Prefix::reading, u" beim Prüfen der Breite des Nullpunkts"},
    {114, Prefix::reading, u" beim Prüfen der Länge des Nullpunkts"},
    {127, Prefix::reading, u" beim Prüfen der großen Halbachse"},
    {128, Prefix::reading, u" beim Prüfen der kleinen Halbachse"},
    {201, Prefix::none,
     u"Keine Konvergenz bei der Bestimmung von e**2 bei der Umwandlung von Soldner- in geographische "
     u"Koordinaten"},
    {202, Prefix::none,
     u"Keine Konvergenz bei der Berechnung des Meridianbogens bei der Umwandlung von Soldner- in "
     u"geographische Koordinaten"},
    {203, Prefix::none,
     u"Keine Konvergenz bei der Berechnung von e(phif) bei der Umwandlung von Soldner- in geographische "
     u"Koordinaten"},
    {204, Prefix::none,
     u"Keine Konvergenz bei der Berechnung der Fußpunktbreite bei der Umwandlung von Soldner- in "
     u"geographische Koordinaten"},
    {205, Prefix::none,
     u"Keine Konvergenz bei der Berechnung der Gesamtbogenlänge bei der Umwandlung von Soldner- in "
     u"geographische Koordinaten"},
    {206, Prefix::none,
     u"Keine Konvergenz bei der Berechnung der Breite bei der Umwandlung von Soldner- in geographische "
     u"Koordinaten"},
    {207, Prefix::none,
     u"Keine Konvergenz bei der Berechnung der Länge bei der Umwandlung von Soldner- in geographische "
     u"Koordinaten"},
    {208, Prefix::none,
     u"Keine Konvergenz bei der Berechnung der Länge bei der Umwandlung von Soldner- in geographische "
     u"Koordinaten"},
    {301, Prefix::none,
     u"Keine Konvergenz bei der Bestimmung von e**2 bei der Umwandlung von konformen in geographische "
     u"Koordinaten"},
    {302, Prefix::none,
     u"Keine Konvergenz bei der Berechnung des Meridianbogens bei der Umwandlung von konformen in "
     u"geographische Koordinaten"},
    {303, Prefix::none,
     u"Keine Konvergenz bei der Berechnung von e(phi) bei der Umwandlung von konformen in geographische "
     u"Koordinaten"},
    {304, Prefix::none,
     u"Keine Konvergenz bei der Berechnung der geographischen Koordinaten bei der Umwandlung von konformen "
     u"in geographische Koordinaten"},
    {305, Prefix::none,
     u"Keine Konvergenz bei der Bestimmung von phi bei der Umwandlung von konformen in geographische "
     u"Koordinaten"},
    {401, Prefix::none,
     u"Keine Konvergenz bei der Bestimmung von e**2 bei der Umwandlung von geographischen in "
     u"Soldner-Koordinaten"},
    {402, Prefix::none,
     u"Keine Konvergenz bei der Berechnung des Meridianbogens bei der Umwandlung von geographischen in "
     u"Soldner-Koordinaten"},
    {403, Prefix::none,
     u"Keine Konvergenz bei der Fußpunktbreite bei der Umwandlung von geographischen in Soldner-Koordinaten"},
    {404, Prefix::none,
     u"Keine Konvergenz bei der y-Koordinatenberechnung bei der Umwandlung von geographischen in "
     u"Soldner-Koordinaten"},
    {405, Prefix::none,
     u"Keine Konvergenz bei der Meridianbogenberechnung bei der Umwandlung von geographischen in "
     u"Soldner-Koordinaten"},
    {501, Prefix::none,
     u"Keine Konvergenz bei der Bestimmung der Koordinaten bei der Umwandlung von geographischen in konforme "
     u"Koordinaten"},
    {502, Prefix::none,
     u"Keine Konvergenz bei der Bestimmung von e**2 bei der Umwandlung von geographischen in konforme "
     u"Koordinaten"},
    {503, Prefix::none,
     u"Keine Konvergenz bei der Berechnung des Meridianbogens bei der Umwandlung von geographischen in "
     u"konforme Koordinaten"},
    {1027, Prefix::reading, u" beim Lesen der großen Halbachse von Bessel"},
    {1028, Prefix::reading, u" beim Lesen der kleinen Halbachse von Bessel"},
    {1029, Prefix::reading, u" beim Lesen der X-Verschiebung"},
    {1030, Prefix::reading, u" beim Lesen der Y-Verschiebung"},
    {1031, Prefix::reading, u" beim Lesen der Z-Verschiebung"},
    {1032, Prefix::reading, u" beim Lesen des ersten Drehwinkels"},
    {1033, Prefix::reading, u" beim Lesen des zweiten Drehwinkels"},
    {1034, Prefix::reading, u" beim Lesen des dritten Drehwinkels"},
    {1035, Prefix::reading, u" beim Lesen des Maßstabs"},
    {1036, Prefix::reading, u" beim Lesen des X-Wertes im Schwerpunkt"},
    {1037, Prefix::reading, u" beim Lesen des Y-Wertes im Schwerpunkt"},
    {1038, Prefix::reading, u" beim Lesen des Z-Wertes im Schwerpunkt"},
    {1039, Prefix::reading, u" beim Lesen der X-Verschiebung zum Zwischensystem"},
    {1040, Prefix::reading, u" beim Lesen der Y-Verschiebung zum Zwischensystem"},
    {1041, Prefix::reading, u" beim Lesen der Z-Verschiebung zum Zwischensystem"},
    {1042, Prefix::reading, u" beim Lesen des ersten Drehwinkels zum Zwischensystem"},
    {1043, Prefix::reading, u" beim Lesen des zweiten Drehwinkels zum Zwischensystem"},
    {1044, Prefix::reading, u" beim Lesen des dritten Drehwinkels zum Zwischensystem"},
    {1045, Prefix::reading, u" beim Lesen des Maßstabs zum Zwischensystem"},
    {1046, Prefix::reading, u" beim Lesen des X-Wertes im Schwerpunkt zum Zwischensystem"},
    {1047, Prefix::reading, u" beim Lesen des Y-Wertes im Schwerpunkt zum Zwischensystem"},
    {1048, Prefix::reading, u" beim Lesen des Z-Wertes im Schwerpunkt zum Zwischensystem"},
    {1049, Prefix::reading, u" beim Prüfen der großen Halbachse von Bessel"},
    {1050, Prefix::reading, u" beim Prüfen der kleinen Halbachse von Bessel"},
    {1090, Prefix::none, u"Keine Konvergenz bei der Berechnung der geographischen Koordinaten"},
    {1100, Prefix::reading, u""},
    {1101, Prefix::reading, u" beim Lesen der Länge des Fundamentalpunktes Rauenberg"},
    {1102, Prefix::reading, u" beim Lesen der Breite des Fundamentalpunktes Rauenberg"},
    {1103, Prefix::reading, u" beim Lesen der Lotabweichung im Fundamentalpunkt Rauenberg"},
    {1104, Prefix::reading, u" beim Lesen der Lotabweichung im Fundamentalpunkt Rauenberg"},
    {1105, Prefix::reading, u" beim Lesen der Höhenanomalie im Fundamentalpunkt Rauenberg"},
    {1106, Prefix::reading, u" beim Lesen der Bereichsangaben für die Länge der absoluten Höhenanomalien"},
    {1107, Prefix::reading, u" beim Lesen der Bereichsangaben für die Breite der absoluten Höhenanomalien"},
    {1108, Prefix::none, u"Für diese Länge bzw. Breite liegt kein Geoidmodell vor"},
    {1109, Prefix::reading, u" beim Lesen der absoluten Undulationen"},
    {1110, Prefix::file, u" existiert nicht oder kann zum Lesen nicht geöffnet werden"},
    {1127, Prefix::reading, u" beim Lesen der großen Halbachse vom GRS80"},
    {1128, Prefix::reading, u" beim Lesen der kleinen Halbachse vom GRS80"},
    {1149, Prefix::reading, u" beim Prüfen der großen Halbachse vom GRS80"},
    {1150, Prefix::reading, u" beim Prüfen der kleinen Halbachse vom GRS80"},
    {1151, Prefix::reading, u" beim Prüfen der Länge des Fundamentalpunktes Rauenberg"},
    {1152, Prefix::reading, u" beim Prüfen der Breite des Fundamentalpunktes Rauenberg"},
    {1156, Prefix::reading, u" beim Prüfen der Bereichsangaben für die Länge der absoluten Höhenanomalien"},
    {1157, Prefix::reading, u" beim Prüfen der Bereichsangaben für die Breite der absoluten Höhenanomalien"},
    {1158, Prefix::reading, u" beim Prüfen der ersten absoluten Undulation"},
    {1159, Prefix::reading, u" beim Prüfen der dritten absoluten Undulation"},
    {1160, Prefix::reading, u" beim Prüfen der zweiten absoluten Undulation"},
    {1161, Prefix::reading, u" beim Prüfen der vierten absoluten Undulation"},
});

static_assert(std::ranges::is_sorted(messages, {}, &Row::code));

// The message of one entry of the definition file, if the code is one of those that begin at base.
bool is_entry(Status code, Status base, std::u16string_view before, Message& message) noexcept {
    if (code < base || code >= base + status::definitionEntries) {
        return false;
    }
    message = {before, true, u" ", code - base + 1, u". Angabe"};
    return true;
}

}  // namespace

Message message_of(Status code) noexcept {
    Message message;
    if (is_entry(code, status::definitionEntryCode, u"Lesen der Lagestatusangabe in der Definitionsdatei ",
                 message) ||
        is_entry(code, status::definitionEntryName, u"Lesen der Dateiangabe in der Definitionsdatei ",
                 message)) {
        return message;
    }
    // The second column of a parameter file holds the values of the first once more.
    if (code >= status::firstTwoColumns + status::secondColumn &&
        code <= status::lastTwoColumns + status::secondColumn) {
        code -= status::secondColumn;
    }
    const auto row = std::ranges::lower_bound(messages, code, {}, &Row::code);
    if (row != messages.end() && row->code == code) {
        message = {prefixes[static_cast<std::size_t>(row->prefix)], row->prefix != Prefix::none, row->text};
    }
    return message;
}

}  // namespace lagestatus
