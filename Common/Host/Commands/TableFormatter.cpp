#include "Commands/TableFormatter.h"

#include "Text/Abort.h"

#include <algorithm>
#include <vector>

namespace {
std::vector<WString> SplitCells(const WString& row, std::size_t maxCount)
{
    std::vector<WString> cells;
    std::wstring_view rest = row.View();
    for (auto end = rest.find(L'\t'); end != rest.npos && cells.size() + 1 < maxCount; end = rest.find(L'\t')) {
        cells.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    cells.emplace_back(rest);
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
        Abort::ThrowIfRequested();
        const auto& cells = table.emplace_back(SplitCells(row, table.empty() ? row.Length() + 1 : widths.size()));
        widths.resize(std::max(widths.size(), cells.size()));
        for (std::size_t column = 0; column < cells.size(); ++column)
            widths[column] = std::max(widths[column], cells[column].Length());
    }
    for (const auto& cells : table) {
        Abort::ThrowIfRequested();
        WriteRow(pipe, cells, widths);
    }
}
