#include "columns.h"

#include <algorithm>

#include "system.h"

namespace lanvoss::program {

std::size_t ColumnsIn(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const CharacterSize size = FirstCharacter(text);
    columns += size.columns;
    text.remove_prefix(size.bytes);
  }
  return columns;
}

std::string CutToColumns(std::string_view text, std::size_t columns) {
  std::size_t length = 0;
  while (length < text.size()) {
    const CharacterSize size = FirstCharacter(text.substr(length));
    if (size.columns > columns) {
      break;
    }
    columns -= size.columns;
    length += size.bytes;
  }
  return std::string(text.substr(0, length));
}

std::string TextTable(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const auto& row : rows) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
      widths[column] = std::max(widths[column], ColumnsIn(row[column]));
    }
  }
  constexpr std::size_t kGap = 2;
  std::string table;
  for (const auto& row : rows) {
    for (std::size_t column = 0; column + 1 < widths.size(); ++column) {
      table += row[column] + std::string(widths[column] - ColumnsIn(row[column]) + kGap, ' ');
    }
    table += row.back() + "\n";
  }
  return table;
}

}  // namespace lanvoss::program
