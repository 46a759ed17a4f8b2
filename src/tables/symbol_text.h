#pragma once

#include <string_view>

#include "tables/csv_row.h"

namespace kiv {

class KivSymbol;

// "arg ", "loc ", "glob", "ext ", "dyn ", or nothing.
std::string_view category_tag(const KivSymbol& symbol);

// The symbol as a declaration: one text without separators.
void put_declaration(csv_row& row, const KivSymbol& symbol);

}  // namespace kiv
