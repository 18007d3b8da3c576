// list and show: the systems of a data directory.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "bulk/texts.h"
#include "commands/commands.h"
#include "geodesy/datum_step.h"
#include "keeper/data_directory.h"
#include "system/output.h"
#include "system/text.h"

namespace cli {
namespace {

using Json = nlohmann::ordered_json;

struct SlotText {
    const char* name;
    const char* unit;
};

constexpr std::array<SlotText, parameterCount> slotTexts = {{
    {"latitude of origin", "rad"},
    {"longitude of origin", "deg, above 360 a zone layout"},
    {"second shift in Y", "m"},
    {"second shift in X", "m"},
    {"decadic complement", "m, 0 not used"},
    {"scale of the meridian", ""},
    {"shift in Y", "m"},
    {"shift in X", "m"},
    {"rotation of the plane system", ""},
    {"additive constant in Y", "m"},
    {"additive constant in X", "m"},
    {"origin coordinate in Y", "m"},
    {"origin coordinate in X", "m"},
    {"scale of the plane system", "1 not used"},
    {"translation in Y", "m"},
    {"translation in X", "m"},
    {"translation in Z", "m"},
    {"rotation about X", "rad"},
    {"rotation about Y", "rad"},
    {"rotation about Z", "rad"},
    {"scale of the datum transformation", ""},
    {"reduction point in Y", "m"},
    {"reduction point in X", "m"},
    {"reduction point in Z", "m"},
    {"semi-major axis", "m"},
    {"semi-minor axis", "m"},
    {"intermediate: translation in Y", "m"},
    {"intermediate: translation in X", "m"},
    {"intermediate: translation in Z", "m"},
    {"intermediate: rotation about X", "rad"},
    {"intermediate: rotation about Y", "rad"},
    {"intermediate: rotation about Z", "rad"},
    {"intermediate: scale", ""},
    {"intermediate: reduction point in Y", "m"},
    {"intermediate: reduction point in X", "m"},
    {"intermediate: reduction point in Z", "m"},
}};

// The names of the slots for programs, in the same order.
std::string key_of(const SlotText& slot) {
    std::string key = slot.name;
    key.erase(std::remove(key.begin(), key.end(), ':'), key.end());
    std::replace(key.begin(), key.end(), ' ', '_');
    return key;
}

struct Named {
    const DefinitionEntry& entry;
    std::string file;
    const ReadSystem& source;
    const ReadSystem& target;
    bool sourceOnly;
    Status status;
};

Named read_entry(const Directory& directory, const DefinitionEntry& entry) {
    const ReadSystem& source = directory.system(entry, Column::intoBessel);
    const ReadSystem& target = directory.system(entry, Column::outOfBessel);
    const bool sourceOnly = is_source_only(source, target);
    const Status ofSource = source.failure.status;
    return {entry,      directory.file_name(entry),
            source,     target,
            sourceOnly, ofSource != status::ok || sourceOnly ? ofSource : target.failure.status};
}

// Of a target whose second column is missing.
const std::string sourceOnlyText =  // NOLINT(cert-err58-cpp): nothing to throw
    "status " + std::to_string(status::firstTwoColumns + status::secondColumn);

std::string auxiliary_text(const DefinitionEntry& entry) {
    return entry.auxiliary == noAuxiliary ? "-" : std::to_string(entry.auxiliary);
}

Json json_of(const Named& named) {
    Json json = {{"code", named.entry.code},
                 {"auxiliary", named.entry.auxiliary == noAuxiliary ? Json() : Json(named.entry.auxiliary)},
                 {"file", named.file},
                 {"status", named.status}};
    if (named.status != 0) {
        json["message"] = message_text(named.status, named.file);
    } else {
        json["name"] = named.source.name;
        json["kind"] = named.source.kind;
        json["ellipsoid"] = named.source.ellipsoid;
        json["source_only"] = named.sourceOnly;
    }
    return json;
}

void put_json(const Json& json) {
    constexpr int indent = 2;
    put(json.dump(indent) + '\n');
}

int list_systems(const std::string& name, bool asJson) {
    std::optional<Directory> directory;
    if (!open_directory(name, directory)) {
        return nothingDone;
    }
    int exitStatus = allGood;
    Json json = Json::array();
    std::vector<std::vector<std::string>> rows = {{"code", "aux", "file", "kind", "ellipsoid", "name"}};
    for (const DefinitionEntry& entry : directory->entries()) {
        const Named named = read_entry(*directory, entry);
        std::vector<std::string> row = {std::to_string(entry.code), auxiliary_text(entry), named.file};
        if (named.status != 0) {
            exitStatus = someFailed;
            row.insert(row.end(), {"*", "*", status_text(named.status, named.file)});
        } else {
            row.insert(row.end(), {named.source.kind, named.source.ellipsoid,
                                   named.source.name +
                                       (named.sourceOnly ? " (source only: " + sourceOnlyText + ")" : "")});
        }
        rows.push_back(row);
        json.push_back(json_of(named));
    }
    if (asJson) {
        put_json(json);
    } else {
        print_table(rows);
    }
    return exitStatus;
}

// What the longitude of origin says, in the words of surveyors.
std::string zone_layout(const SystemDescription& system) {
    const ZoneLayout layout = zones_of(system);
    const double value = system.parameters[slot::longitudeOfOrigin];
    if (!layout.hasStrips) {
        const std::string prefix =
            system.zoneNumber != 0 ? ", Kennziffer " + std::to_string(system.zoneNumber) : "";
        return "ein Mittelmeridian " + number_text(value) + "°" + prefix;
    }
    const std::string sign = layout.offset < 0 ? " - " : " + ";
    const std::string offset = layout.offset == 0 ? "" : sign + std::to_string(std::abs(layout.offset)) + "°";
    const std::string width = std::to_string(layout.width) + "°";
    return "Streifen " + width + ", Mittelmeridian " + width + "·z" + offset;
}

// Of its step into the Bessel datum, or out of it.
int stages_of(const SystemDescription& system) {
    return in_bessel_datum(system) ? 0 : has_intermediate_set(system.parameters) ? 2 : 1;
}

std::string stages_text(const SystemDescription& system) {
    constexpr std::array<const char*, 3> texts = {"none: lies in the Bessel datum", "one stage",
                                                  "two stages"};
    return texts.at(static_cast<std::size_t>(stages_of(system)));
}

int show_system(const std::string& name, int code, bool asJson) {
    std::optional<Directory> directory;
    const DefinitionEntry* const entry =
        open_directory(name, directory) ? find_entry(*directory, code) : nullptr;
    if (entry == nullptr) {
        return nothingDone;
    }
    const Named named = read_entry(*directory, *entry);
    if (named.status != 0) {
        complain(status_text(named.status, named.source.file));
        return nothingDone;
    }
    const SystemDescription& source = named.source.description;
    const SystemDescription& target = named.target.description;
    if (asJson) {
        Json json = json_of(named);
        json["zone_number"] = source.zoneNumber;
        if (kind_of(source).hasStrips) {
            json["zone_layout"] = zone_layout(source);
        }
        json["stages_into_bessel"] = stages_of(source);
        json["stages_out_of_bessel"] = named.sourceOnly ? Json() : Json(stages_of(target));
        json["parameters"] = Json::array();
        for (std::size_t slot = 0; slot < slotTexts.size(); ++slot) {
            json["parameters"].push_back(
                {{"slot", slot},
                 {"name", key_of(slotTexts[slot])},
                 {"unit", slotTexts[slot].unit},
                 {"into_bessel", source.parameters[slot]},
                 {"out_of_bessel", named.sourceOnly ? Json() : Json(target.parameters[slot])}});
        }
        put_json(json);
        return allGood;
    }
    std::vector<std::vector<std::string>> head = {
        {"code", std::to_string(code)}, {"auxiliary", auxiliary_text(named.entry)},
        {"file", named.file},           {"name", named.source.name},
        {"kind", named.source.kind},    {"ellipsoid", named.source.ellipsoid}};
    if (kind_of(source).hasStrips) {
        head.push_back({"zones", zone_layout(source)});
    }
    head.push_back({"zone number", std::to_string(source.zoneNumber)});
    head.push_back({"into Bessel", stages_text(source)});
    head.push_back(
        {"out of Bessel", named.sourceOnly ? "not given (" + sourceOnlyText + ")" : stages_text(target)});
    print_table(head);
    put("\n");
    std::vector<std::vector<std::string>> rows = {{"slot", "value", "into Bessel", "out of Bessel", "unit"}};
    for (std::size_t slot = 0; slot < slotTexts.size(); ++slot) {
        rows.push_back({std::to_string(slot), slotTexts[slot].name, number_text(source.parameters[slot]),
                        named.sourceOnly ? "-" : number_text(target.parameters[slot]), slotTexts[slot].unit});
    }
    print_table(rows);
    return allGood;
}

}  // namespace

Command list_command() {
    struct Options {
        std::string directory = ".";
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command{"list", "List the systems of a data directory"};
    command.add_directory(&options->directory);
    command.add("--json", &options->json, "For programs: a JSON array");
    command.examples = "lagestatus list -d data";
    command.run = [options] { return list_systems(options->directory, options->json); };
    return command;
}

Command show_command() {
    struct Options {
        std::string directory = ".";
        int code = 0;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command{"show", "Show the description of one system"};
    command.add("CODE", &options->code, "Lagestatus of the system", {.required = true});
    command.add_directory(&options->directory);
    command.add("--json", &options->json, "For programs: a JSON object");
    command.examples = "lagestatus show 301 -d data";
    command.run = [options] { return show_system(options->directory, options->code, options->json); };
    return command;
}

}  // namespace cli
