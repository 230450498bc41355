#pragma once

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// A table of ASCII text, as Markdown has it: names in the first column, numbers in the others.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> titles) { Row(std::move(titles)); }

  /// As many cells as there are titles.
  void Row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  void Print(std::ostream& out) const {
    PrintRow(out, rows_.front());
    for (std::size_t column = 0; column < rows_.front().size(); ++column) {
      out << '|' << std::string(Width(column) + 1, '-') << (column == 0 ? '-' : ':');
    }
    out << "|\n";
    for (std::size_t row = 1; row < rows_.size(); ++row) PrintRow(out, rows_[row]);
    out << '\n';
  }

 private:
  std::size_t Width(std::size_t column) const {
    std::size_t width = 0;
    for (const auto& row : rows_) width = std::max(width, row[column].size());
    return width;
  }

  void PrintRow(std::ostream& out, const std::vector<std::string>& row) const {
    for (std::size_t column = 0; column < row.size(); ++column) {
      out << "| " << (column == 0 ? std::left : std::right)
          << std::setw(static_cast<int>(Width(column))) << row[column] << ' ';
    }
    out << "|\n";
  }

  std::vector<std::vector<std::string>> rows_;
};

}  // namespace bench
