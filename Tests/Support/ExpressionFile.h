#pragma once

#include "Support/Expressions.h"
#include "Support/TestFiles.h"

/// The rows of a file (a relative path begins in Tests): its lines "expression => outcome" that are no comments, which
/// begin with "//".
inline std::vector<ExpressionRow> ReadRows(const std::filesystem::path& file)
{
    const std::string arrow = " => ";
    std::vector<ExpressionRow> rows;
    for (const std::string& line : ReadTestLines(file)) {
        const std::size_t at = line.find(arrow);
        if (at != std::string::npos && !line.starts_with("//"))
            rows.push_back({line.substr(0, at), line.substr(at + arrow.size())});
    }
    EXPECT_FALSE(rows.empty()) << file;
    return rows;
}
