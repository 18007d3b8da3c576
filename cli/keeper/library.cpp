#include "keeper/library.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "system/platform.h"

namespace cli {
namespace {

// Path names go through byte by byte: the library hands each unit's low 8 bits to the system.
std::u16string path_units(const std::string& path) {
    const std::string bytes = directory_bytes(path).value();  // the commands have refused others
    std::u16string units;
    for (const char byte : bytes) {
        units.push_back(static_cast<unsigned char>(byte));
    }
    return units;
}

constexpr char16_t replacement = u'\uFFFD';

bool is_high_surrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool is_low_surrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void append_utf8(std::string& text, char32_t point) {
    const auto put = [&text](char32_t byte) {
        text.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
    };
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0 | (point >> 6));
        put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        put(0xE0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    } else {
        put(0xF0 | (point >> 18));
        put(0x80 | ((point >> 12) & 0x3F));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
}

// Control characters of a broken data file must not reach a terminal.
std::string to_utf8(std::u16string_view units) {
    std::string text;
    for (std::size_t at = 0; at < units.size(); ++at) {
        char32_t point = units[at];
        if (is_high_surrogate(point) && at + 1 < units.size() && is_low_surrogate(units[at + 1])) {
            point = 0x10000 + ((point - 0xD800) << 10) + (units[++at] - 0xDC00U);
        } else if (is_high_surrogate(point) || is_low_surrogate(point)) {
            point = replacement;
        }
        const bool control = point < 0x20 || (point >= 0x7F && point < 0xA0);
        append_utf8(text, control ? replacement : point);
    }
    return text;
}

// Takes the first character of a text that is not empty; a byte that begins none gives the replacement character.
char32_t take_utf8(std::string_view& text) {
    struct Form {
        unsigned char mask;
        unsigned char lead;
        char32_t smallest;
    };
    // By the number of bytes that follow the first.
    constexpr std::array<Form, 4> forms = {
        {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};
    const auto first = static_cast<unsigned char>(text.front());
    for (std::size_t following = 0; following < forms.size() && following < text.size(); ++following) {
        const Form& form = forms[following];
        if ((first & form.mask) != form.lead) {
            continue;
        }
        char32_t point = first & static_cast<unsigned char>(~form.mask);
        bool valid = true;
        for (const char next : text.substr(1, following)) {
            valid = valid && (static_cast<unsigned char>(next) & 0xC0U) == 0x80;
            point = (point << 6U) | (static_cast<unsigned char>(next) & 0x3FU);
        }
        const bool surrogate = is_high_surrogate(point) || is_low_surrogate(point);
        if (valid && point >= form.smallest && point <= 0x10FFFF && !surrogate) {
            text.remove_prefix(following + 1);
            return point;
        }
    }
    text.remove_prefix(1);
    return replacement;
}

// Bytes that are not UTF-8 come out as replacement characters.
std::u16string from_utf8(std::string_view text) {
    std::u16string units;
    while (!text.empty()) {
        const char32_t point = take_utf8(text);
        if (point < 0x10000) {
            units.push_back(static_cast<char16_t>(point));
        } else {
            units.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10U)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FFU)));
        }
    }
    return units;
}

template <std::size_t N>
using Buffer = std::array<lagestatus_char, N>;
using NameBuffer = Buffer<LAGESTATUS_NAME_SIZE>;
using EllipsoidBuffer = Buffer<LAGESTATUS_ELLIPSOID_SIZE>;
using KindBuffer = Buffer<LAGESTATUS_KIND_SIZE>;

}  // namespace

Definition read_definition(const std::string& directory) {
    int scrambled = 0;
    int count = 0;
    std::array<int, LAGESTATUS_MAX_ENTRIES> codes = {};
    std::array<int, LAGESTATUS_MAX_ENTRIES> auxiliary = {};
    std::vector<lagestatus_char> names(std::size_t{LAGESTATUS_MAX_ENTRIES} * LAGESTATUS_NAME_SIZE);
    Definition definition;
    definition.status = translD_dll(path_units(directory).c_str(), &scrambled, &count, codes.data(),
                                    auxiliary.data(), names.data());
    definition.scrambled = scrambled == 1;
    if (definition.status != 0) {
        return definition;
    }
    for (std::size_t number = 0; number < static_cast<std::size_t>(std::max(count, 0)); ++number) {
        const lagestatus_char* const name = names.data() + number * LAGESTATUS_NAME_SIZE;
        definition.entries.push_back({codes[number], auxiliary[number], name});
    }
    return definition;
}

System read_system(const std::string& directory, const Definition& definition, const Entry& entry,
                   Role role) {
    const std::u16string path = path_units(directory);
    NameBuffer name = {};
    EllipsoidBuffer ellipsoid = {};
    KindBuffer kind = {};
    System system;
    const int scrambled = definition.scrambled ? 1 : 0;
    if (role == Role::source) {
        system.status = transla_dll(path.c_str(), entry.fileBase.c_str(), scrambled, entry.code, name.data(),
                                    ellipsoid.data(), kind.data(), system.parameters.data());
    } else {
        system.status =
            translz_dll(path.c_str(), entry.fileBase.c_str(), scrambled, entry.code, name.data(),
                        ellipsoid.data(), kind.data(), &system.zoneNumber, system.parameters.data());
    }
    system.name = to_utf8(name.data());
    system.ellipsoid = to_utf8(ellipsoid.data());
    system.kind = to_utf8(kind.data());
    return system;
}

std::string parameter_file_name(const Definition& definition, const Entry& entry) {
    return to_utf8(entry.fileBase) + (definition.scrambled ? ".tr0" : ".tra");
}

bool System::is(Kind which) const {
    switch (which) {
        case Kind::geographic:
            return kind.starts_with("Geographisch");
        case Kind::geocentric:
            return kind.starts_with("Geozentrisch");
        case Kind::gaussKrueger:
            return kind.starts_with("Gauss-Krueger");
        case Kind::soldner:
            break;
    }
    return kind.starts_with("Soldner");
}

bool System::has_two_stages() const {
    constexpr std::size_t firstOfIntermediate = 10;
    constexpr std::size_t switches = 6;
    const auto* const first = slots::datumSets.begin() + firstOfIntermediate;
    return std::any_of(first, first + switches,
                       [this](std::size_t slot) { return parameters.at(slot) != 0.0; });
}

bool System::has_axes_of(const System& other) const {
    return parameters[slots::semiMajorAxis] == other.parameters[slots::semiMajorAxis] &&
           parameters[slots::semiMinorAxis] == other.parameters[slots::semiMinorAxis];
}

bool System::has_datum_sets_of(const System& other) const {
    return std::all_of(slots::datumSets.begin(), slots::datumSets.end(),
                       [&](std::size_t slot) { return parameters.at(slot) == other.parameters.at(slot); });
}

ZoneLayout zone_layout_of(const System& system) {
    constexpr double fullCircle = 360.0;
    constexpr double offsetZero = 600.0;
    constexpr double largest = 1e9;  // far beyond every layout, and within an int
    const double value = system.parameters[slots::longitudeOfOrigin];
    if (!(value > fullCircle) || value > largest) {
        return {};
    }
    const double whole = std::trunc(value);
    return {true, static_cast<int>((value - whole + 0.05) * 10.0), static_cast<int>(whole - offsetZero)};
}

Road::End::End(const System& system)
    : kind(from_utf8(system.kind)), ellipsoid(from_utf8(system.ellipsoid)), parameters(system.parameters) {
    // As many units as the library reads.
    kind.resize(LAGESTATUS_KIND_SIZE + 1);
    ellipsoid.resize(LAGESTATUS_ELLIPSOID_SIZE + 1);
}

// A longer name counts as a file that cannot be opened: nothing is opened at all.
constexpr std::size_t longestDirectory = 299;

Road::Road(const std::string& directory, const System& source, const System& target)
    : heightDirectory(path_units(directory)),
      plainDirectory(heightDirectory),
      from(source),
      to(target),
      zoneNumber(target.zoneNumber) {
    // On these roads the library computes a normal height that nobody asked for.
    if (target.in_bessel_datum() && (!source.in_bessel_datum() || source.is(Kind::geocentric))) {
        plainDirectory.assign(longestDirectory + 1, u'x');
    }
}

Transformed Road::transform(const std::array<double, 3>& point, Heights heights) const {
    constexpr int flagSet = -1;
    Transformed transformed;
    transformed.status = transr_dll(
        point.data(), from.kind.c_str(), to.kind.c_str(), transformed.result.data(), from.ellipsoid.c_str(),
        from.parameters.data(), to.ellipsoid.c_str(), to.parameters.data(), zoneNumber,
        heights.normalGiven ? flagSet : 0, heights.normalWanted ? flagSet : 0, heightDirectory.c_str());
    return transformed;
}

std::string message(int status, std::string_view fileName) {
    const std::u16string name = from_utf8(fileName);
    // The longest message without a file name takes 129 units, what stands around a file name 91.
    std::vector<lagestatus_char> buffer(std::max<std::size_t>(129, 91 + name.size()));
    transfm_dll(status, name.c_str(), buffer.data());
    return to_utf8(buffer.data());
}

}  // namespace cli
