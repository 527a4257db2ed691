#pragma once

#include "Text/WString.h"

/// Doubles as display text with a chosen number of significant digits, in the portable locale. Digits are those of
/// the exact decimal expansion, correctly rounded. A number that is not finite is "inf", "-inf" or "nan" from every
/// formatter.

/// Enough for any output of the formatters below, its end included.
constexpr unsigned int numberTextSize = 72;

/// Decomposes the value: `digits` receives exactly `count` digits d1..dn and `point` the p of 0.d1..dn * 10^p; `sign`
/// is 1 for a negative value, -0.0 too, else 0. Zero is all zeros with point 0. `count` is from 1 to 40; the value
/// must be finite. Throws ExitCode(0, 200, errno) when it cannot be done.
void MyEcvt(WString& digits, double value, int count, int* point, int* sign);
/// Writes the number with "%d"; `size` is the buffer's in bytes.
void MyItow(int value, wchar_t* buffer, unsigned int size);

// The formatters write into a buffer of numberTextSize and return it. `digits` is from 2 to 40.

/// A fixed count of significant digits, trailing zeros kept ("1.00", "0.0325", "3.25e4").
wchar_t* efFcvt(double value, short digits, wchar_t* out);
/// The same without trailing zeros ("1", "3.25", "3.25e-4").
wchar_t* efFtoa(double value, short digits, wchar_t* out);
/// Engineering notation: the exponent is a multiple of 3 ("32.5e-3").
wchar_t* efFmtEng(double value, int digits, wchar_t* out, bool removeEndingZeros);
/// The value nudged upward by a digit far behind those shown, so that one stored just below a decimal half rounds up
/// when printed.
double efAdjustDblForDisplay(double value, int decimals);

/// 15 significant digits without trailing zeros: the text of every computed number.
WString DoubleToString(double value);
