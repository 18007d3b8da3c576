#include "lagestatus.h"
#include "lagestatus.hpp"

static_assert(sizeof(lagestatus_char) == 2);
static_assert(!std::is_copy_constructible_v<lagestatus::Directory> &&
              std::is_nothrow_move_assignable_v<lagestatus::Directory>);
static_assert(!std::is_copy_constructible_v<lagestatus::Transformation> &&
              std::is_nothrow_move_assignable_v<lagestatus::Transformation>);
static_assert(std::is_nothrow_copy_constructible_v<lagestatus::Error>);
// What is read from may not be written to.
static_assert(!std::is_constructible_v<lagestatus::Column<double>, lagestatus::Column<const double>> &&
              !std::is_constructible_v<lagestatus::Column<double>, std::span<const double>>);
