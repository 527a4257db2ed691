#pragma once

/// What can be found in expressions. FINDINGS-EXPRESSIONS.TXT explains each code, under the title that stands here.
namespace Findings {
inline constexpr const wchar_t* BadExpression = L"S050";       // Fault of grammar
inline constexpr const wchar_t* UnknownFunction = L"S051";     // Unknown function
inline constexpr const wchar_t* WrongCount = L"S052";          // Wrong number of arguments
inline constexpr const wchar_t* BadReference = L"S053";        // Reference that cannot be read
inline constexpr const wchar_t* UnsetVariable = L"S054";       // Variable that nothing sets
inline constexpr const wchar_t* UnknownReference = L"S055";    // Reference to nothing on this bench
inline constexpr const wchar_t* ConstantCondition = L"S056";   // Condition that never changes
inline constexpr const wchar_t* NumberCondition = L"S057";     // Number as a condition
inline constexpr const wchar_t* FailingComparison = L"S058";   // Comparison that always fails
inline constexpr const wchar_t* FailingOperation = L"S059";    // Operation that always fails
inline constexpr const wchar_t* HexadecimalText = L"S060";     // Text read as a hexadecimal number
inline constexpr const wchar_t* HexadecimalCompared = L"S061"; // Texts compared as hexadecimal numbers
} // namespace Findings
