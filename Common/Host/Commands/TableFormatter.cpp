#include "Commands/TableFormatter.h"

#include <algorithm>
#include <vector>

namespace {
std::vector<WString> SplitCells(const WString& row)
{
    std::vector<WString> cells;
    WString cell;
    for (unsigned int column = 0; row.TryGetListItem(cell, column, L'\t'); ++column)
        cells.push_back(cell);
    return cells;
}

void WriteRow(Pipe& pipe, const std::vector<WString>& cells, const std::vector<std::size_t>& widths)
{
    constexpr std::size_t gap = 2;
    WString line;
    std::size_t indent = 0;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        if (!cells[column].IsEmpty()) {
            line += WString(indent - line.Length(), L' ');
            line += cells[column];
        }
        indent += widths[column] + gap;
    }
    pipe.DoWriteLine(line);
}
} // namespace

void TableFormatter::WriteTable(Pipe& pipe) const
{
    std::vector<std::vector<WString>> table;
    std::vector<std::size_t> widths;
    for (const WString& row : rows) {
        const auto& cells = table.emplace_back(SplitCells(row));
        widths.resize(std::max(widths.size(), cells.size()));
        for (std::size_t column = 0; column < cells.size(); ++column)
            widths[column] = std::max(widths[column], cells[column].Length());
    }
    for (const auto& cells : table)
        WriteRow(pipe, cells, widths);
}
