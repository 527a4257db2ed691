#pragma once

/// Prints a table of all cases: what an evaluation takes in each contender, of the case's own text and of its 1,000
/// variants.
void PrintItems();
