#pragma once

/// Prints a table of what the evaluator takes for a term of long expressions, each evaluated as a whole.
void PrintGrowth();
