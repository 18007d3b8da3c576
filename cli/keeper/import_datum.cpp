// The datum sets of an imported system, from published parameters.
#include <array>
#include <cstddef>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "geodesy/datum_step.h"
#include "keeper/data_directory.h"
#include "keeper/import_steps.h"
#include "system/text.h"

namespace cli {
namespace {

struct Published {
    Similarity set;
    std::vector<std::string> comments;
};

struct SetOptions {
    const char* name;  // the options as messages name them
    const char* conventionName;
    const char* reductionName;
    const std::string& set;
    const std::string& convention;
    const std::string& reduction;
};

Published published_set(const SetOptions& given, const std::string& way) {
    constexpr std::size_t shiftOnly = 3;
    constexpr std::size_t complete = 7;
    constexpr double secondsInHalfTurn = 648000.0;
    constexpr double partsPerMillion = 1e-6;
    const std::string which = std::string(given.name) + " " + given.set + ": ";
    std::vector<double> values = numbers_in(given.name, given.set);
    if (values.size() != shiftOnly && values.size() != complete) {
        throw Refused(
            which + "must be three or seven numbers: dx,dy,dz in metres, rx,ry,rz in arc seconds, ds in ppm");
    }
    values.resize(complete, 0.0);
    const bool turns = values[3] != 0.0 || values[4] != 0.0 || values[5] != 0.0;
    if (turns && given.convention.empty()) {
        throw Refused(which + "has rotations, whose sign depends on the convention: give " +
                      given.conventionName + " position_vector or coordinate_frame, as published");
    }
    const bool positionVector = given.convention == "position_vector";
    Published published;
    Similarity& set = published.set;
    for (std::size_t axis = 0; axis < shiftOnly; ++axis) {
        const double angle = values[3 + axis] * std::numbers::pi / secondsInHalfTurn;
        set.translation.at(axis) = values[axis];
        set.rotation.at(axis) = (positionVector ? -angle : angle) + 0.0;  // no negative zero
    }
    set.scale = 1.0 + values[6] * partsPerMillion;
    if (!(set.scale > 0.0)) {
        throw Refused(which + "the scale must stay above 0");
    }
    std::string text;
    constexpr std::array<const char*, complete> units = {" m, ", " m, ", " m, ", "\", ",
                                                         "\", ", "\", ", " ppm"};
    for (std::size_t at = 0; at < complete; ++at) {
        text += short_text(values[at]) + units.at(at);
    }
    published.comments = {set.changes_nothing() ? way + ": kein Unterschied."
                                                : way + ", veröffentlicht: " + text + "."};
    if (turns) {
        published.comments.emplace_back(
            positionVector
                ? "Drehwinkel als \"position vector\". Hier drehen positive Winkel das Achsenkreuz: "
                  "umgekehrtes Vorzeichen, Bogenmaß."
                : "Drehwinkel als \"coordinate frame\": wie hier drehen positive Winkel das Achsenkreuz; "
                  "Bogenmaß.");
    }
    if (!given.reduction.empty()) {
        const std::vector<double> centre = numbers_in(given.reductionName, given.reduction);
        if (centre.size() != shiftOnly) {
            throw Refused(std::string(given.reductionName) + " " + given.reduction +
                          ": must be three numbers, X,Y,Z");
        }
        // Published as Q = P + T + scale R (P - P0) + P0 - P; here P0 is not added back.
        for (std::size_t axis = 0; axis < shiftOnly; ++axis) {
            set.reduction.at(axis) = centre[axis];
            set.translation.at(axis) += centre[axis];
        }
        published.comments.push_back("Nullpunktreduktion (Molodensky-Badekas): " + short_text(centre[0]) +
                                     " m, " + short_text(centre[1]) + " m, " + short_text(centre[2]) +
                                     " m; um sie ist die Translation größer als veröffentlicht.");
    }
    return published;
}

// The step from the Bessel datum to WGS84/ETRS89, as a system of a directory has it.
Published hub_of_directory(const ImportOptions& options, const Directory& directory) {
    const std::optional<int> code = integer_of(options.hubCode);
    if (!code) {
        throw Refused("--hub " + options.hubCode + ": is no whole number");
    }
    const ReadSystem* const read = open_system(directory, *code, Column::outOfBessel);
    if (read == nullptr) {
        throw Refused("--hub " + options.hubCode + ": cannot be used");
    }
    const SystemDescription& hub = read->description;
    if (in_bessel_datum(hub)) {
        throw Refused("--hub " + options.hubCode +
                      ": lies in the Bessel datum itself and has no step out of it");
    }
    if (has_intermediate_set(hub.parameters)) {
        throw Refused("--hub " + options.hubCode +
                      ": its step out of the Bessel datum has two stages; take a system in " +
                      "WGS84 or ETRS89 itself");
    }
    return {main_set_of(hub),
            {"Vom Besseldatum nach WGS84/ETRS89: Spalte 2 des Lagestatus " + std::to_string(*code) + "."}};
}

void check_intermediate(const char* option, const Similarity& set) {
    if (!set.is_seen_as_intermediate() && !set.changes_nothing()) {
        throw Refused(std::string(option) +
                      ": a change of scale without translation and rotation cannot be undone by a " +
                      "parameter file, which looks at an intermediate set only if one of those is not 0");
    }
}

}  // namespace

void set_datum(ParameterText& content, const ImportOptions& options, const Directory* directory) {
    const bool ownHub = !options.hubSet.empty();
    if (lies_in_bessel_datum(content.ellipsoid)) {
        if (!options.set.empty() || ownHub || !options.hubCode.empty()) {
            throw Refused("--ellipsoid-name " + content.ellipsoid +
                          ": begins with Bessel, so the system counts as lying in the Bessel datum and no "
                          "datum step is "
                          "ever made; for a datum of its own give the ellipsoid another name, for example "
                          "--ellipsoid-name MGI-Bessel");
        }
        refuse_given({{"--convention", options.convention},
                      {"--reduction", options.reduction},
                      {"--hub-convention", options.hubConvention},
                      {"--hub-reduction", options.hubReduction}},
                     "in the Bessel datum");
        content.headComments.emplace_back(
            "Das System liegt im Besseldatum: Die Datumsübergänge am Ende der Datei bleiben neutral.");
        content.datumComments = {
            "Bessel-Systeme brauchen keinen Datumsübergang; die Zeilen stehen der Form wegen da."};
        return;
    }
    if (options.set.empty()) {
        throw Refused(
            "--towgs84 is missing: the step from the system to WGS84/ETRS89; 0,0,0 for a system in that "
            "datum");
    }
    if (ownHub == !options.hubCode.empty()) {
        throw Refused(
            "the step from the Bessel datum to WGS84/ETRS89 is given either by --hub-towgs84, or by --hub, a "
            "system of the directory -d");
    }
    if (!ownHub) {
        refuse_given({{"--hub-convention", options.hubConvention}, {"--hub-reduction", options.hubReduction}},
                     "with --hub, whose step the directory has");
    }
    const Published system = published_set(
        {"--towgs84", "--convention", "--reduction", options.set, options.convention, options.reduction},
        "Vom System nach WGS84/ETRS89");
    const Published hub = ownHub
                              ? published_set({"--hub-towgs84", "--hub-convention", "--hub-reduction",
                                               options.hubSet, options.hubConvention, options.hubReduction},
                                              "Vom Besseldatum nach WGS84/ETRS89")
                              : hub_of_directory(options, *directory);
    check_intermediate("--towgs84", system.set);
    check_intermediate(ownHub ? "--hub-towgs84" : "--hub", hub.set);
    content.intoBessel = {system.set, hub.set};
    content.outOfBessel = {hub.set, system.set};
    content.datumComments = system.comments;
    content.datumComments.insert(content.datumComments.end(), hub.comments.begin(), hub.comments.end());
    content.datumComments.emplace_back(
        "Spalte 1 (nach Bessel): Hauptsatz vom System nach WGS84/ETRS89, von dort genau umgekehrt nach "
        "Bessel.");
    content.datumComments.emplace_back(
        "Spalte 2 (von Bessel): Hauptsatz von Bessel nach WGS84/ETRS89, von dort genau umgekehrt ins "
        "System.");
}

}  // namespace cli
