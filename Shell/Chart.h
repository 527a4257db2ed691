#pragma once

#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <vector>

/// Numbers drawn in the characters of a terminal: in block characters, or in those of ASCII alone.
namespace Chart {
/// A number for each cell, drawn as a height between the least and the greatest of them; NaN leaves its cell blank.
WString DrawTrend(const std::vector<double>& numbers, bool isUnicode);
/// A line for each range of numbers, with their count and a bar; the longest line is `width` cells wide. Whole numbers
/// that lie close together have a line each. Nothing for no numbers.
WStringArray DrawHistogram(const std::vector<double>& numbers, unsigned int width, bool isUnicode);
} // namespace Chart
