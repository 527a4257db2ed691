#include "Bench.h"

#include "Failure.h"
#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "Runs.h"
#include "Services/LogFile.h"
#include "Text/HostError.h"

#include <limits>
#include <memory>

static unsigned int last_lc = 0; // the number of the last bench
static unsigned int open_lc = 0; // the number of the open one, or 0

WStringArray Bench::Open(const std::string& dataFolder, const std::string& profileFolder)
{
    Running::RequireNone("a bench cannot be opened");
    if (open_lc != 0) {
        PyErr_SetString(PyExc_RuntimeError, "another bench is open in this process");
        throw py::error_already_set();
    }
    WStringArray reports = System::Start(dataFolder, profileFolder);
    open_lc = ++last_lc;
    return reports;
}

unsigned int Bench::GetOpen() noexcept
{
    return open_lc;
}

void Bench::Require(unsigned int number)
{
    if (number == 0 || number != open_lc)
        throw py::value_error("the bench is closed");
}

/// Makes the instrument's data empty ones, which know no file, whatever was there before.
static void BeginAnew()
{
    std::construct_at(&System::config);
    std::construct_at(&System::status);
    std::construct_at(&System::usage);
    LogFile::Attach("", [](const WString&, bool) { return false; });
    open_lc = 0;
}

bool Bench::Close(unsigned int number)
{
    if (number == 0 || number != open_lc)
        return false;
    Running::RequireNone("the bench cannot be closed");
    std::destroy_at(&System::usage); // which writes what is counted
    std::destroy_at(&System::status);
    std::destroy_at(&System::config);
    BeginAnew();
    return true;
}

/// The data stay as they are in memory: another thread of the parent may just have been at work in them, and what they
/// would write at their end is for the parent to write.
void Bench::Leave()
{
    if (open_lc != 0)
        BeginAnew();
}

BenchTable::BenchTable() : bench(Bench::GetOpen()) {}

void BenchTable::Check() const
{
    Bench::Require(bench);
}

[[noreturn]] static void RaiseOsError(const WString& reason)
{
    PyErr_SetObject(PyExc_OSError, ToPython(reason).ptr());
    throw py::error_already_set();
}

/// Does what may wait for other processes, or for the disk. What a file does to it is an OSError.
template <typename Work>
static auto Wait(const Work& work)
try {
    const LongRun run;
    return work();
} catch (const HostException& failure) {
    if (!IsHostError(failure, HostError::FileError))
        throw;
    RaiseOsError(failure.GetMessage());
}

static int ToInt(py::handle value)
{
    int overflow = 0;
    const long number = PyLong_AsLongAndOverflow(value.ptr(), &overflow);
    if (number == -1 && PyErr_Occurred())
        throw py::error_already_set();
    using Limits = std::numeric_limits<int>;
    if (overflow != 0 || number < Limits::min() || number > Limits::max())
        throw py::value_error("the value has more than 32 bits");
    return static_cast<int>(number);
}

static py::object ReadItem(const StatusValue& item)
{
    if (!item.text)
        return py::none();
    bool truth = false;
    double number = 0;
    ExitCode code;
    if (item.TryGetBool(truth))
        return py::bool_(truth);
    if (item.TryGetDouble(number))
        return py::float_(number);
    if (item.TryGetExitCode(code))
        return Failure::ToPython(code);
    if (item.type == ST_Int || item.type == ST_UInt || item.type == ST_UInt64)
        return py::int_(ToPython(*item.text));
    return ToPython(*item.text);
}

/// The type of a new item.
static StatusType ChooseType(py::handle value)
{
    if (PyBool_Check(value.ptr()))
        return ST_Bool;
    if (PyUnicode_Check(value.ptr()))
        return ST_String;
    return PyLong_Check(value.ptr()) ? ST_Int : ST_Double;
}

py::object StatusTableOfBench::Get(const WString& name)
{
    StatusValue item;
    return System::status.TryGet(name, item) ? ReadItem(item) : py::object();
}

void StatusTableOfBench::Set(const WString& name, py::handle value)
{
    const bool isCode = System::status.GetItemType(name) == ST_ExitCode && PyTuple_Check(value.ptr());
    const py::object plain = isCode ? py::str(value) : ToPlain(value);
    const WString text = WriteValue(plain);
    const StatusType type = ChooseType(plain);
    Check();
    const bool isSet = Wait([&] {
        StatusTable& status = System::status;
        const bool fits = status.ContainsItem(name) ? status.TrySet(name, text) : status.TryAdd(name, type, text);
        if (fits)
            status.Save();
        return fits;
    });
    if (!isSet)
        throw py::value_error("the item does not take that value");
}

bool StatusTableOfBench::TryDelete(const WString& name)
{
    return Wait([&] {
        const bool isDeleted = System::status.TryDelete(name);
        System::status.Save();
        return isDeleted;
    });
}

WStringArray StatusTableOfBench::GetNames()
{
    WStringArray names;
    System::status.GetNames(names);
    return names;
}

py::object ConfigTable::Get(const WString& name)
{
    WString text;
    return System::config.TryGetString(section, name, text) ? ReadValue(text) : py::object();
}

/// Whether the file can hold the text as a part of a line.
static bool CanHold(const WString& text, std::wstring_view specials)
{
    return text.View().find_first_of(specials) == std::wstring_view::npos;
}

void ConfigTable::Set(const WString& name, py::handle value)
{
    const WString text = WriteValue(value);
    Check();
    if (section.IsEmpty() || name.IsEmpty() || !CanHold(section, L"\r\n[]") || !CanHold(name, L"\r\n[]=;#") ||
        !CanHold(text, L"\r\n"))
        throw py::value_error("a file of settings cannot hold that");
    Wait([&] {
        System::config.SetString(section, name, text);
        System::config.Save();
    });
}

bool ConfigTable::TryDelete(const WString& name)
{
    return Wait([&] {
        const bool isDeleted = System::config.TryDelete(section, name);
        System::config.Save();
        return isDeleted;
    });
}

WStringArray ConfigTable::GetNames()
{
    WStringArray keys;
    System::config.GetKeys(section, keys);
    return keys;
}

WStringArray Bench::GetSections(unsigned int number)
{
    Require(number);
    WStringArray sections;
    System::config.GetSections(sections);
    return sections;
}

py::object UsageTable::Get(const WString& name)
{
    int value = 0;
    const bool isThere = Wait([&] { return System::usage.TryGetUsageValue(name.ToCString(), value); });
    return isThere ? py::object(py::int_(value)) : py::object();
}

void UsageTable::Set(const WString& name, py::handle value)
{
    const int number = ToInt(value);
    Check();
    if (!Wait([&] { return System::usage.Set(name.ToCString(), number); }))
        RaiseOsError(System::usage.GetFault());
}

bool UsageTable::TryDelete(const WString& name)
{
    if (Wait([&] { return System::usage.TryDelete(name.ToCString()); }))
        return true;
    const WString fault = System::usage.GetFault();
    if (Get(name))
        RaiseOsError(fault);
    return false;
}

WStringArray UsageTable::GetNames()
{
    WStringArray names;
    Wait([&] { System::usage.GetNames(names); });
    return names;
}

py::object EventTable::Get(const WString& name)
{
    OS9EventData* const event = OS9EventManager::GetOS9Event(name);
    if (!event)
        return {};
    const int value = event->Read();
    event->ReleaseReference();
    return py::int_(value);
}

void EventTable::Set(const WString& name, py::handle value)
{
    const int number = ToInt(value);
    Check();
    if (OS9EventData* const event = OS9EventManager::GetOS9Event(name)) {
        event->Write(number);
        event->ReleaseReference();
    } else if (!OS9EventManager::TryCreate(name, number)) {
        throw py::value_error("an event has a name of 1 to 63 characters, and there is room for 256");
    }
}

bool EventTable::TryDelete(const WString& name)
{
    return OS9EventManager::TryDelete(name);
}

WStringArray EventTable::GetNames()
{
    WStringArray names;
    OS9EventManager::GetNames(names);
    return names;
}
