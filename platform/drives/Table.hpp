// Tables for people: columns as wide as what stands in them, counted as it shows on a terminal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace drives {

/// Columns of a terminal that a UTF-8 text takes; wide characters take two, combining ones none.
size_t shownWidth(std::string_view text);

class Table {
  public:
    enum class Align { Left, Right };
    struct Column {
        std::string title;
        Align align = Align::Left;
    };

    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// As many cells as columns. Control characters and bytes that are no UTF-8 show as '?'.
    void add(std::vector<std::string> cells);
    /// Lines with their ends, without blanks at the ends; the titles first.
    std::string text() const;

  private:
    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace drives
