// The steps from published parameters to a parameter file. What they refuse is thrown as Refused.
#pragma once

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "keeper/closure.h"
#include "keeper/data_directory.h"
#include "keeper/parameter_text.h"

namespace cli {

// As they are given; empty where they are not.
struct ImportOptions {
    std::string code;
    std::string name;
    std::string kind;
    std::string ellipsoid, ellipsoidName, semiMajorAxis, inverseFlattening, semiMinorAxis;
    std::string latitude, longitude, scale, easting, northing, strips;
    std::string set, convention, reduction;
    std::string hubSet, hubConvention, hubReduction, hubCode, directory;
    std::string area, point;
    std::string output;
    bool force = false;
};

// A description that is not complete or that a parameter file cannot express.
class Refused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The number or numbers that an option has, without negative zeros.
double number_in(const char* option, const std::string& text);
double number_in(const char* option, const std::string& text, double ifNotGiven);
std::vector<double> numbers_in(const char* option, const std::string& text);

// A number as people write it.
std::string short_text(double value);

// A text that a parameter file can have in quotes.
std::string quotable_text(const char* option, const std::string& text, std::size_t longest);

struct Given {
    const char* option;
    const std::string& text;
};

void refuse_given(std::initializer_list<Given> several, const std::string& why);

void set_ellipsoid(ParameterText& content, const ImportOptions& options);
void set_projection(ParameterText& content, const ImportOptions& options);
void set_datum(ParameterText& content, const ImportOptions& options, const Directory* directory);

// Points there and back, and one point with and without the datum step.
std::string report_of(const BothRoles& system, const ParameterText& content, const ImportOptions& options);

// Says on stderr which other systems of the directory count as lying in the same datum though they do not.
void note_equal_names(const BothRoles& system, int code, const Directory* directory);

}  // namespace cli
