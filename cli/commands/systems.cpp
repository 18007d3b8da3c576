// list and show: the systems of a data directory.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "keeper/directory.h"
#include "system/output.h"

namespace cli {
namespace {

using Json = nlohmann::ordered_json;

struct Slot {
    const char* name;
    const char* unit;
};

constexpr std::array<Slot, LAGESTATUS_PARAMETER_COUNT> slots = {{
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
std::string key_of(const Slot& slot) {
    std::string key = slot.name;
    key.erase(std::remove(key.begin(), key.end(), ':'), key.end());
    std::replace(key.begin(), key.end(), ' ', '_');
    return key;
}

struct Named {
    const Entry& entry;
    std::string file;
    System source;
    System target;
    bool sourceOnly;
    int status;
};

Named read_entry(const std::string& directory, const Definition& definition, const Entry& entry) {
    Named named = {entry,
                   parameter_file_name(definition, entry),
                   read_system(directory, definition, entry, Role::source),
                   read_system(directory, definition, entry, Role::target),
                   false,
                   0};
    named.sourceOnly = is_source_only(named.source, named.target);
    named.status = named.source.status != 0 || named.sourceOnly ? named.source.status : named.target.status;
    return named;
}

std::string auxiliary_text(const Entry& entry) {
    return entry.auxiliary == -1 ? "-" : std::to_string(entry.auxiliary);
}

Json json_of(const Named& named) {
    Json json = {{"code", named.entry.code},
                 {"auxiliary", named.entry.auxiliary == -1 ? Json() : Json(named.entry.auxiliary)},
                 {"file", named.file},
                 {"status", named.status}};
    if (named.status != 0) {
        json["message"] = message(named.status, named.file);
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

int list_systems(const std::string& directory, bool asJson) {
    Definition definition;
    if (!open_directory(directory, definition)) {
        return nothingDone;
    }
    int exitStatus = allGood;
    Json json = Json::array();
    std::vector<std::vector<std::string>> rows = {{"code", "aux", "file", "kind", "ellipsoid", "name"}};
    for (const Entry& entry : definition.entries) {
        const Named named = read_entry(directory, definition, entry);
        std::vector<std::string> row = {std::to_string(entry.code), auxiliary_text(entry), named.file};
        if (named.status != 0) {
            exitStatus = someFailed;
            row.insert(row.end(), {"*", "*", status_text(named.status, named.file)});
        } else {
            row.insert(row.end(),
                       {named.source.kind, named.source.ellipsoid,
                        named.source.name + (named.sourceOnly ? " (source only: status 70)" : "")});
        }
        rows.push_back(row);
        json.push_back(json_of(named));
    }
    asJson ? put_json(json) : print_table(rows);
    return exitStatus;
}

// What the longitude of origin says, in the words of surveyors.
std::string zone_layout(const System& system) {
    const ZoneLayout layout = zone_layout_of(system);
    const double value = system.parameters[slots::longitudeOfOrigin];
    if (!layout.strips) {
        const std::string prefix =
            system.zoneNumber != 0 ? ", Kennziffer " + std::to_string(system.zoneNumber) : "";
        return "ein Mittelmeridian " + number_text(value) + "°" + prefix;
    }
    const std::string sign = layout.offset < 0 ? " - " : " + ";
    const std::string offset = layout.offset == 0 ? "" : sign + std::to_string(std::abs(layout.offset)) + "°";
    const std::string width = std::to_string(layout.width) + "°";
    return "Streifen " + width + ", Mittelmeridian " + width + "·z" + offset;
}

std::string stages(const System& system) {
    if (system.in_bessel_datum()) {
        return "none: lies in the Bessel datum";
    }
    return system.has_two_stages() ? "two stages" : "one stage";
}

int show_system(const std::string& directory, int code, bool asJson) {
    Definition definition;
    System source;
    if (!open_directory(directory, definition) ||
        !open_system(directory, definition, code, Role::source, source)) {
        return nothingDone;
    }
    const Named named = read_entry(directory, definition, *find_entry(definition, code));
    if (named.status != 0) {
        complain(status_text(named.status, in_directory(directory, named.file)));
        return nothingDone;
    }
    const System& target = named.target;
    // The zone number is read with the target's side of the file, even where its second column is missing.
    source.zoneNumber = target.zoneNumber;
    if (asJson) {
        Json json = json_of(named);
        json["zone_number"] = target.zoneNumber;
        if (source.is(Kind::gaussKrueger)) {
            json["zone_layout"] = zone_layout(source);
        }
        json["stages_into_bessel"] = source.in_bessel_datum() ? 0 : source.has_two_stages() ? 2 : 1;
        json["stages_out_of_bessel"] = named.sourceOnly           ? Json()
                                       : source.in_bessel_datum() ? Json(0)
                                                                  : Json(target.has_two_stages() ? 2 : 1);
        json["parameters"] = Json::array();
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            json["parameters"].push_back(
                {{"slot", slot},
                 {"name", key_of(slots[slot])},
                 {"unit", slots[slot].unit},
                 {"into_bessel", source.parameters[slot]},
                 {"out_of_bessel", named.sourceOnly ? Json() : Json(target.parameters[slot])}});
        }
        put_json(json);
        return allGood;
    }
    std::vector<std::vector<std::string>> head = {
        {"code", std::to_string(code)}, {"auxiliary", auxiliary_text(named.entry)},
        {"file", named.file},           {"name", source.name},
        {"kind", source.kind},          {"ellipsoid", source.ellipsoid}};
    if (source.is(Kind::gaussKrueger)) {
        head.push_back({"zones", zone_layout(source)});
    }
    head.push_back({"zone number", std::to_string(target.zoneNumber)});
    head.push_back({"into Bessel", stages(source)});
    head.push_back({"out of Bessel", named.sourceOnly ? "not given (status 70)" : stages(target)});
    print_table(head);
    put("\n");
    std::vector<std::vector<std::string>> rows = {{"slot", "value", "into Bessel", "out of Bessel", "unit"}};
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        rows.push_back({std::to_string(slot), slots[slot].name, number_text(source.parameters[slot]),
                        named.sourceOnly ? "-" : number_text(target.parameters[slot]), slots[slot].unit});
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
