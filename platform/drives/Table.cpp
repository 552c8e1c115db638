// Tables for people.
#include "Table.hpp"
#include "Utf8.hpp"

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace drives {

size_t shownWidth(std::string_view text) {
    // wcwidth() knows characters only in a locale that has them, whatever the person's is.
    static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = utf8 != nullptr ? ::uselocale(utf8) : nullptr;
    size_t width = 0;
    while (!text.empty()) {
        const auto character = engine::firstCharacter(text);
        const int columns = character ? ::wcwidth(static_cast<wchar_t>(character->value)) : 1;
        width += columns >= 0 ? static_cast<size_t>(columns) : 1;
        text.remove_prefix(character ? character->bytes : 1);
    }
    if (before != nullptr) ::uselocale(before);
    return width;
}

void Table::add(std::vector<std::string> cells) {
    cells.resize(columns_.size());
    for (std::string& cell : cells)
        cell = engine::printable(cell);
    rows_.push_back(std::move(cells));
}

std::string Table::text() const {
    std::vector<std::string> titles;
    for (const Column& column : columns_)
        titles.push_back(column.title);
    std::vector<size_t> widths(columns_.size(), 0);
    const auto widen = [&](const std::vector<std::string>& cells) {
        for (size_t index = 0; index < cells.size(); ++index)
            widths[index] = std::max(widths[index], shownWidth(cells[index]));
    };
    widen(titles);
    for (const auto& row : rows_)
        widen(row);
    std::string text;
    const auto write = [&](const std::vector<std::string>& cells) {
        std::string line;
        for (size_t index = 0; index < cells.size(); ++index) {
            const std::string blanks(widths[index] - shownWidth(cells[index]), ' ');
            if (index > 0) line += "  ";
            line += columns_[index].align == Align::Right ? blanks + cells[index] : cells[index] + blanks;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    };
    write(titles);
    for (const auto& row : rows_)
        write(row);
    return text;
}

} // namespace drives
