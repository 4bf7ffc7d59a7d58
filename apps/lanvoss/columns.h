// Texts in the columns of a terminal. Some characters take two of them, some take none.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::program {

std::size_t ColumnsIn(std::string_view text);

// The beginning of the text that takes at most so many columns.
std::string CutToColumns(std::string_view text, std::size_t columns);

// Rows of cells as lines. The cells of a column begin below each other.
std::string TextTable(const std::vector<std::vector<std::string>>& rows);

}  // namespace lanvoss::program
