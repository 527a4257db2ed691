#pragma once

#include "Commands/Pipe.h"
#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

/// A table of rows whose cells are separated by tabs. The first row has the most columns: in the others the last cell
/// takes what is left, further tabs included. Written with its columns aligned and two blanks between them.
class HOST_API TableFormatter
{
public:
    void AddRow(const WString& row) { rows.Add(row); }
    std::size_t GetRowCount() const noexcept { return rows.Count(); }
    /// Writes the rows, without blanks at line ends.
    void WriteTable(Pipe& pipe) const;

private:
    WStringArray rows;
};
