#include "ScriptTools/RandomScript.h"

#include <algorithm>
#include <array>
#include <random>
#include <span>
#include <vector>

namespace {
using Forms = std::vector<const char*>;

/// What a letter behind "$" may stand for. Deep inside, the simple forms alone are taken.
struct Rule
{
    char letter;
    Forms simple;
    Forms composed = {};
};

// Numbers n and small ones m, texts T, conditions B that depend on something, assertions A that hold; of known
// variables $v is a number, $t a text. XX
const std::vector<Rule> clean_lc = {
    {'d', {"0", "1", "2", "7", "12.5", ".5", "0x1F", "2e-3", "100"}},
    {'P', {"1", "2", "12.5", "4"}},
    {'n',
        {"$v", "$v", "$v", "$d", "%S{TempOptics}", "%C{Detection MaxLight}", "%c{[Transport] Retries}",
            "%s{ DetectorGain }", "%E{$v}", "PI", "i_max"},
        {"$n+$n", "$n-$n", "$n*$n", "$n/$P", "($n)", "(-$n)", "$v^2", "($P^-$d)", "Max($n, $n,$n)", "Round($n,2)",
            "abs($n)", "sqrt(abs($n))", "IF($B,$n,$n)", "Sum($n,$n)", "avg($n)", "Mod($n,7)", "Len($T)",
            "Val(CStr($n))", "InitIfNa(nowhere,$n)", "IF(IsNA(nowhere),0,nowhere*3)", "int($n)", "ListLen(\"a,b,c\")",
            "IndexOf($T,\"e\")", "Min($n,$n)", "sin($n)", "GetStatus(\"TempOptics\")", "GetStatus(\"Nowhere\",$n)",
            "GetConfigInt(\"Detection\",\"MaxLight\")", "GetConfig(\"Detection\",\"Nowhere\",$n)", "StDev($v,$n,$n)",
            "FromHex(\"1F\")", "If(IsErr($n/$v),0,$n)", "DateToDays(20240228)", "VersionCompare(\"1.2\",\"1.10\")",
            "Sign($n) * 2", "floor($n)", "Rand(1,100)"}},
    {'m', {"$d", "$v+1", "Min($n,50)", "%S{TempOptics}", "Mod($n, 97)"}},
    {'T', {"\"Hello\"", "\"x y\"", "\"a;b\"", "\"Gr\u00F6\u00DFe\"", "$t", "%S{VersionProductName}", "\"\""},
        {"($T & $T)", "UCase($T)", "Left($T,3)", "StrCat($T,$T,$T)", "IF($B,$T,$T)", "CStr($n)", "Ftoa($n,2)",
            "ToHex(12)", "ListItem(\"a,b,c\",2)", "StrReplace($T,\"l\",\"L\")", "Right($T,2)", "Mid($T & \"ab\",2)",
            "($T & ($n))"}},
    {'B', {"$v>$d", "$v<=$d", "$v<>$d", "$t=\"Hello\"", "%S{FrontDoorOpen}", "%S{TempOptics}>30", "IsNA($v)"},
        {"$n+$v<$n", "$B and $B", "$B or ($B)", "Not($B)", "($B)", "StartsWith($T,$t)", "IsErr($n/$v)",
            "IsErr(sqrt($v))", "$B XOR $B", "Matches($t,\"H*\")", "IsInList(\"a,b,c\",$t)", "Defined($v)"}},
    {'A',
        {"Len(CStr($v+$n))>0", "abs($v-$n)>=0", "IsNA($v)=false", "$t<>\"nothing\"", "%S{TempOptics}>30",
            "not(IsErr($v+$n))", "$B or $v>-1e300"}},
    {'o', {"", "", "", "-q ", "-v ", "-- ", "-Q -v "}},
    {'w',
        {"hello", "a  b", "\"a ; b\"", "%E{$v}", "at %S{TempOptics} C", "100%", "Gr\u00F6\u00DFe \u00B5 \u2026",
            "-- -x", "it's", "%e{ $v } %C{[Detection]Filter}"}},
    {'F',
        {"1043:505:133 Calc -q 1/0", "* Cacl $n", "1043:505:20 Calc -q 1+*2", "9015:0:13 Assert -q $v>1e9",
            "*:505:* Set never=nowhere+1", "2013:0:4 Wait soon", "1042:0:3 If 1=1 Echo a", "*:505:201 Calc -q Foo($n)",
            "1064:0:10 While -w0 $B Do Wait 0", "2003:1:5 Echo %S{Nowhere}"}},
    {'R',
        {"Calc $o$n", "calc $o$T", "CALC $o$B", "Set $v=$m", "Set -v $v = $m", "Set $t=Left($t & \"!\", 20)",
            "Set -i $v=$m", "Set $v", "Echo $w", "Echo $w $w", "Wait 0", "Status TempOptics",
            "Config [Detection]MaxLight", "Help Round", "Watch -c1 $v*1", "Stats 1,%S{TempOptics}"}},
    {'S', {"$R", "$R", "$R", "Assert $A", "Assert -c2 $A", "AssertFail $F"}},
    {'I', {"If $B Then $R", "IF -v $B THEN $R", "If -rA1 $B then $R"}},
    {'J',
        {"If $B Then $R; $R", "If $B Then $R Else $R", "If $B Then $R;$R Else $R ; $R",
            "If $B Then $R Else If $B Then $R Else $R"}},
    {'X',
        {"While -c2 $B Do $R; $R", "WHILE -c3 i<=2 DO $R", "While -c2 -w0.001 $B do $R", "While i<3 Do $R; $R",
            "While -c2 -er9015:* $B Do $R", "While -v -c1 $B Do $I"}},
    {'Y',
        {"$I", "$J", "$X", "If -l| $B Then $X | $R", "If -l| $B Then $I | $R Else $J", "If $B Then $I; $R",
            "While -l| -c2 $B Do $J | $I | $X", "If $B Then While -l| -c2 $B Do $R | $R", "While -c2 $B Do $S; $S",
            "While -l| -c2 $B Do If -l~ $B Then $X ~ $R | $J", "AssertFail *:505:133 While -c2 $v>-1e9 Do Calc 1/0"}},
};

/// Commands that fail wherever they are run.
const Forms failing_lc = {"Cacl $n", "calcx", "Calc -z $n", "While -c99999999999 $B Do Wait 0", "Assert -c0 $A",
    "Assert -c $A", "While -w0 $B Do Wait 0", "While -er $B Do Wait 0", "If -l $B Then Wait 0", "If -x $B Then Wait 0",
    "If $B Echo a", "If $B Then", "If $B Then Wait 0 Else", "While $B Echo a", "While -v", "If", "Calc", "Assert -q",
    "Echo \"a", "Wait 0 0", "Wait", "Wait soon", "Wait -x 0", "Wait \"0", "Run nowhere.txt", "Run", "Calc $n+",
    "Calc $n*/$n", "Calc ($n", "Calc $n)", "Calc $n,$n", "Calc Foo($n)", "Calc $v+Foo($n)", "Calc Max()",
    "Calc Round($n)", "Calc Left($T,1,2)", "Set x1=Left($T,1,2)", "Calc Mid($T)", "Calc Rand($n)", "Calc \"abc",
    "Calc %X{a}", "Calc %S TempOptics", "Calc %S{TempOptics", "Calc %C{Detection}", "Calc %C{[Detection MaxLight}",
    "Calc nowhere+1", "Calc - -1", "Calc $T # no", "Calc 2($n)", "Calc $v $n", "Calc ($n) & Foo(1,$T)", "Calc .",
    "Set a b=1", "Set a-b=1", "Set -z a=1", "Set -x a=1", "Set a*=1", "Set nowhere", "Set x1=$n+", "Set x1=(1",
    "Assert \"yes\"", "Assert $v=", "Calc true+1", "Calc 1 and true", "Calc sqrt(\"xyz\")", "Calc 1/0", "Calc $n/0",
    "Calc sqrt(-1)+1", "Calc \"x\"<\"y\"", "Calc true and \"x\"", "Echo %S{Nowhere}", "Echo %E{nowhere}",
    "Echo %S{TempOptics", "Exit soon", "Exit 300", "Status Nowhere", "Config [Detection]Nowhere", "Help Nowhere",
    "If -v1 $B Then Wait 0", "Calc -q1 $n", "Calc -help $n", "Calc -Q -y", "AssertFail *", "AssertFail * Echo a",
    "Status -d-1 a=1", "Echo -x a", "Status -j", "If $n+ Then Wait 0", "If \"x\" Then Wait 0", "While $n* Do Wait 0",
    "If Foo($n) Then Wait 0", "If $B adn $B Then Wait 0", "Calc a\u00DF", "Calc $n ! 2", "Calc Foo (1)", "Calc 1.2.3(",
    "While -c1 $v<1e9 Do Calc $n+", "While -c1 true Do Set x1=1; Cacl 1", "Run \"part.txt", "Run part.txt now"};

/// Where a command may stand; "$f" is its place.
const Forms places_lc = {"If $B Then $f", "If %S{TempOptics}<0 Then $f", "If %S{TempOptics}>0 Then $f",
    "If $B Then $S; $f", "If $B Then $S Else $f", "While -c1 $B Do $f", "While -c1 -er* $B Do $f",
    "While -c1 -er*:505:* $B Do $S; $f", "AssertFail * $f", "AssertFail *:505:* $f", "If $B Then AssertFail * $f",
    "While -l| -c1 $B Do If $B Then $f; $S | $S", "If -l| $B Then While -c1 $B Do $f; $S | $S",
    "While -c2 $B Do If $B Then $S; $f Else $S"};

// Whatever can be typed: atoms a, expressions x, options p, commands k and lists l.
const std::vector<Rule> wild_lc = {
    {'a',
        {"0", "1", "2", "12.5", "0x1F", ".5", "2e-3", "\"abc\"", "\"b\"", "\"12\"", "\"\"", "\"x y\"", "\"a;b\"",
            "true", "false", "$v", "$v", "$t", "i", "EC_While", "PI", "RND", "nowhere", "%S{TempOptics}", "%S{Nowhere}",
            "%C{[Detection]MaxLight}", "%C{Detection Nowhere}", "%U{Nowhere}", "%E{$v}", "%E{nowhere}", "%X{a}",
            "%S{FrontDoorOpen}", "%S{LastExitCode}", "\"a\\\"b\"", "\u00E4"}},
    {'q',
        {"+", "-", "*", "/", "^", "&", "=", "<>", "<", ">", "<=", ">=", " and ", " or ", " xor ", "and", "-  -", " ",
            ",", " = ", " & "}},
    {'g',
        {"abs", "Max", "Min", "IF", "IsErr", "IsNA", "InitIfNa", "Left", "Len", "Round", "Val", "sqrt", "Sum",
            "ListItem", "GetStatus", "GetEnv", "GetConfig", "Foo", "not", "Mod", "Mid", "StrCat", "UCase", "Bool",
            "Defined", "Fcvt", "sign", "log", "IndexOf", "Rand", "DateToDays", "FmtEng", "ToHex", "Matches"}},
    {'x', {"$a"},
        {"$x$q$x", "$x$q$x", "$x$q$x", "($x)", "($x", "$x)", "-$x", "$g($x)", "$g($x,$x)", "$g($x,$x)", "$g($x,$x,$x)",
            "$g()", "$g ($x)", "$g($x", "IF($x,$x,$x)", "IsErr($x)", "($x)", "$x+$x", "$n", "$B"}},
    {'p',
        {"", "", "", "-q ", "-v ", "-x ", "-- ", "-q1 ", "-c1 ", "-c0 ", "-i ", "-z ", "-l| ", "-r1 ", "-l ", "-- -",
            "-er9015:* ", "-er*:505:*,1:2:3 ", "-w0.001 ", "-w-1 ", "-er*:133 ", "-v -v "}},
    {'y', {" Then ", " THEN ", " then ", " Then ", " ", "Then ", " Them "}},
    {'z', {" Do ", " DO ", " do ", " ", " Doo "}},
    {'e', {"", "", " Else $l", " ELSE", " Else $l", " Esle $l"}},
    {'k',
        {"Calc $p$x", "calc $p$x", "Calc $x", "Assert $p$x", "Set $p$v=$x", "Set $p$x", "Set $v = $x", "Set nowhere",
            "Watch -c1 $p$x", "Usage Nowhere", "Config $v", "Set *", "Set $v=$x -v", "Echo %E{$v}", "Echo \"", "Cacl 1",
            "Wait 0", "Wait $a", "Status Nowhere", "Echo -- -x", "AssertFail *", "Exit", "Run part.txt",
            "Run nowhere.txt", "Run script.txt", "Help $g", "$S", "", "  ", "# check: off", "Set a=1 # no",
            "Wait 0 // no", "Calc $x", "Calc $p$x"},
        {"If $p$x$y$l$e", "While -c1 $p$x$z$l", "While -c2 $x$z$l", "AssertFail * $k", "AssertFail 1043:505:133 $k",
            "AssertFail 1:2 $k", "AssertFail *:505:* $k", "If $B Then $l$e", "$Y", "If $B Then If $x Then $l Else $l",
            "While -c1 $B Do If $B Then $l Else $l"}},
    {'l', {"$k", "$k", "$k; $k", "$k;$k", "$k|$k", "$S; $k"}},
};

const std::vector<std::string> numberNames_lc = {"total", "x", "Count_1", "max.value", "A", "rate"};
const std::vector<std::string> textNames_lc = {"label", "name.1", "S"};

class Writer
{
public:
    explicit Writer(std::uint32_t seed) : random(seed)
    {
        for (const auto* rules : {&clean_lc, &wild_lc}) {
            for (const Rule& rule : *rules)
                ruleOfLetter[static_cast<unsigned char>(rule.letter)] = &rule;
        }
    }

    unsigned int Below(std::size_t limit) { return static_cast<unsigned int>(random() % limit); }
    template <typename Items>
    const auto& Pick(const Items& items)
    {
        return items[Below(items.size())];
    }

    std::string Expand(const std::string& form, int depth = 0)
    {
        std::string text;
        for (std::size_t at = 0; at < form.size(); ++at) {
            if (form[at] == '$')
                text += ExpandLetter(form[++at], depth);
            else
                text += form[at];
        }
        return text;
    }

    /// A line that sets a variable, which is known behind it.
    std::string Define(bool isText)
    {
        const std::string name = Pick(isText ? textNames_lc : numberNames_lc);
        std::string line = "Set " + name + "=" + (isText ? "\"Hello\"" : Expand("Mod($n, 97)"));
        (isText ? texts : numbers).push_back(name);
        return line;
    }

    /// The text with a character too many, too few, or another one.
    std::string Damage(std::string text)
    {
        const std::string characters = "\"();,%{}\\ -+=<*#.aA1|&^";
        const std::size_t at = Below(text.size() + 1);
        text.replace(
            at, at < text.size() && Below(2) == 0 ? 1 : 0, Below(3) == 0 ? "" : std::string(1, Pick(characters)));
        return text;
    }

    /// The command as two lines of a script, where it has a blank to be parted at.
    std::string Continue(std::string line)
    {
        const std::size_t at = line.find(' ', Below(line.size() + 1));
        if (at != std::string::npos && line.find('#') == std::string::npos && line.find('\\') == std::string::npos)
            line.insert(at, "\\\n");
        return line;
    }

private:
    std::mt19937 random;
    std::array<const Rule*, 128> ruleOfLetter{};
    std::vector<std::string> numbers = {"target", "i_max"};
    std::vector<std::string> texts = {"label"};

    std::string ExpandLetter(char letter, int depth)
    {
        constexpr int deepest = 3;
        if (letter == 'v')
            return Pick(numbers);
        if (letter == 't')
            return Pick(texts);
        if (letter == 'f')
            return Expand(Pick(failing_lc));
        const Rule& rule = *ruleOfLetter[static_cast<unsigned char>(letter)];
        const bool isComposed = !rule.composed.empty() && depth < deepest && Below(2) == 0;
        return Expand(Pick(isComposed ? rule.composed : rule.simple), depth + 1);
    }
};
} // namespace

RandomScript::RandomScript(std::uint32_t seed) : kind(static_cast<Kind>(seed % 3)), isNested(seed / 3 % 2 == 1)
{
    Writer writer(seed);
    std::vector<std::string> lines = {"Set i_max=3", "Set label=\"Hello\"", writer.Define(false), writer.Define(true)};
    const unsigned int count = 3 + writer.Below(8);
    for (unsigned int made = 0; made < count; ++made) {
        const unsigned int sort = writer.Below(12);
        if (kind == Kind::Wild && sort < 5)
            lines.push_back(writer.Expand("$k", isNested ? 0 : 3));
        else if (kind == Kind::Wild && sort < 8)
            lines.push_back(writer.Damage(writer.Expand(isNested ? "$Y" : "$S")));
        else if (sort == 8)
            lines.push_back(writer.Define(writer.Below(2) == 0));
        else if (sort == 9)
            lines.push_back("  # " + writer.Expand("$w"));
        else if (sort == 10 && writer.Below(3) == 0)
            lines.push_back("Run part.txt\nCalc fromPart + 1");
        else
            lines.push_back(writer.Expand(isNested ? "$Y" : "$S"));
    }
    const auto insert = [&](const std::string& line) {
        lines.insert(lines.end() - static_cast<std::ptrdiff_t>(writer.Below(count)), line);
    };
    if (kind == Kind::Failing) {
        insert(writer.Expand("$f"));
        if (isNested)
            insert(writer.Expand(writer.Pick(places_lc)));
    }
    for (std::string& line : lines) {
        if (writer.Below(8) == 0)
            line = writer.Continue(line);
        text += line + (kind == Kind::Wild && writer.Below(40) == 0 ? " \r\n" : "\n");
    }
    if (kind == Kind::Clean && writer.Below(4) == 0)
        text += "Exit 0\n";
}
