#pragma once

#include "Containers/Object.h"
#include "ExpressionEvaluatorApi.h"
#include "LiveCounter.h"
#include "Text/ExitCode.h"
#include "Text/WString.h"

#include <concepts>
#include <type_traits>

class ExpressionEvaluatorException;
struct Item;
struct Refusal;

/// A pointer to anything but wide text, which would silently be taken for a boolean where a value is expected.
template <typename T>
concept NoValuePointer = std::is_pointer_v<T> && !std::convertible_to<T, const wchar_t*>;

/// What a token is in an expression.
enum TokenType : int
{
    TT_NONE = -1, // nothing read yet
    TT_END = 0,
    TT_LEFTP = 1,
    TT_RIGHTP = 2,
    TT_UNARYOP = 3,
    TT_BINARYOP = 4,
    TT_DUALOP = 5, // unary or binary by context
    TT_FUNCOP = 6,
    TT_OPERAND = 7,
    TT_PRMLIST = 8,
    TT_PRMSEP = 9
};

/// What an operand holds; bit values.
enum DataType : int
{
    DT_NONE = 0,
    DT_NUM = 1,
    DT_BOOL = 2,
    DT_STR = 4,
    DT_NUMSTR = 5,
    DT_ERR = 8
};

/// The one value type of the engine: a lexical token, an operand, a variable's value, a result, or an error on its
/// way. Every conversion between numbers, booleans and text goes through it. Copies share nothing. Not for use by two
/// threads at once.
class EE_API EEToken : public Object
{
public:
    EEToken() noexcept = default;
    EEToken(int type, const wchar_t* text) : text(text), type(type) {}
    EEToken(int type, wchar_t ch, int position) : text(1, ch), type(type), position(position) {}
    /// A token of what an item stands for.
    explicit EEToken(const Item& item) { SetItem(item); }
    EEToken(const EEToken& other) = default;
    EEToken(EEToken&& other) noexcept = default;
    ~EEToken() override = default;
    EEToken& operator=(const EEToken& other) = default;
    EEToken& operator=(EEToken&& other) noexcept = default;
    EEToken& operator=(EEToken* other); // NA for a null pointer

    // Setters leave every field that they do not name as it is.

    void SetItem(const Item& item); // all that the item has
    void SetToken(int newType, const wchar_t* newText);
    void SetToken(int newType, wchar_t ch); // an empty text for 0
    void SetType(int newType) noexcept;
    void SetNoPrm(int count) noexcept { dataType = count; } // the parameter count of a function token
    void SetText(const wchar_t* newText, std::size_t length) { text.Assign(newText, newText ? length : 0); }
    void SetPosition(int newPosition) noexcept { position = newPosition; }
    void SetValue(const WString& value);
    void SetValue(const wchar_t* value);
    void SetValue(double value); // the text is emptied, so that the number prints from its value
    void SetValue(bool value);
    template <NoValuePointer T>
    void SetValue(T value) = delete;
    void SetNA();
    void SetTypeErr(); // the error code is left as it is
    void SetException(unsigned int code, const WString& message);
    void SetException(const ExpressionEvaluatorException& exception); // its position only when that is not -1
    void SetMissingVariable(const WString& name);
    void ClearError() noexcept; // error code 0 and no missing-variable mark

    /// The item that stands for this token; its text is a view of this one's.
    Item AsItem() const noexcept;
    void SetItemFrom(Item& item) const noexcept;
    const WString& GetText() const noexcept { return text; }
    int GetType() const noexcept { return type; }
    int GetDataType() const noexcept { return dataType; }
    int GetNoPrm() const noexcept { return dataType; }
    int GetPosition() const noexcept { return position; }
    unsigned int GetErrorCode() const noexcept { return errorCode; }
    bool IsMissingVariable() const noexcept { return missingVariable; }
    /// An operand that holds a value: a number, boolean or text, neither NA nor an error.
    bool IsValued() const noexcept { return type == TT_OPERAND && (dataType & ~DT_ERR) != 0; }

    /// The operator's priority (1 to 6), looked up once and kept; 7 for what is no operator. An operand keeps what it
    /// has.
    int GetPriority();
    bool Is(wchar_t ch) const noexcept { return text.Length() == 1 && text[0] == ch; }
    bool IsRightAssoc() const noexcept { return Is(L'^'); }
    /// True for what is no operand, for NA and for a missing variable; false for every other error.
    bool IsNa() const noexcept;

    /// The value of an operand of just that type; otherwise false and 1.0, false or "". `hasText`, when given, receives
    /// whether the number carries the text in which it was written.
    bool TryGetValue(double* value, bool* hasText) const noexcept;
    bool TryGetValue(bool* value) const noexcept;
    bool TryGetValue(WString& value) const;

    /// Number of a number, a boolean (1 or 0), or a decimal or hexadecimal text; false for others and for what is not
    /// finite.
    bool TryCast(double& value) const;
    /// Boolean of a boolean, or of a text that is one. A number reads true when it is zero (within ten times the double
    /// epsilon), which is deliberate.
    bool TryCast(bool& value) const;

    // Conversions that throw ExpressionEvaluatorException with this token's position; what holds no value throws its
    // own error.

    double GetNumber() const; // number or numeric text; 143 on a boolean, 4 on other text, 149/150 when not finite
    double ToNumber() const;  // whatever TryCast takes; 2 otherwise
    int GetInteger(int min, int max) const; // GetNumber, truncated toward zero; 50 outside the range
    bool GetBool() const;                   // a boolean; 6 otherwise
    WString GetWString(bool convert) const; // a text, with `convert` also a number or boolean; 8 otherwise
    /// As GetWString, in one of ten slots of the process: valid until ten further calls from any thread. Thread-safe.
    const wchar_t* GetString(bool convert) const;

    /// Text for display; never throws.
    WString ToString() const;
    /// Type, data type and value, for logs.
    WString GetDumpString() const;

    /// Throws the error that the token carries; returns when it holds a value. Every "%t" of the message, in any case,
    /// becomes the message, once: what is put in is not looked at again.
    void RethrowError() const;
    /// False, and nothing written, unless the token is an error; else its exit code, message and position.
    bool TryGetErrorMessage(ExitCode& code, WString& message, int& errorPosition) const;

    /// Returns its argument; throws 149 for an infinite one and 150 for NaN, with position -1.
    static double ValidNumber(double value);
    static bool IsNumberValid(double value) noexcept;

private:
    WString text;
    int type = TT_NONE;
    int dataType = DT_NONE;
    int priority = -1; // not looked up yet
    double number = 0;
    int boolValue = 0;
    int position = 0;
    unsigned int errorCode = 0;
    bool missingVariable = false;

    static std::atomic<int> liveCount;
    friend int GetDebugObjectCountExpressionEvaluator_EEToken();
    [[no_unique_address]] LiveCounter<liveCount> liveCounter;

    void SetOperand(int newDataType) noexcept;
    [[noreturn]] void Throw(const Refusal& refusal) const;
};

/// How many tokens are alive in the process.
EE_API int GetDebugObjectCountExpressionEvaluator_EEToken();
