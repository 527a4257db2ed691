#include "Bench.h"

#include "Failure.h"
#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "Runs.h"
#include "Services/LogFile.h"
#include "Text/HostError.h"

#include <limits>

static unsigned int opened_lc = 0; // how many there have been
static bool isOpen_lc = false;

WStringArray Bench::Open(const std::string& dataFolder, const std::string& profileFolder)
{
    Running::RequireNone("a bench cannot be opened");
    if (isOpen_lc) {
        PyErr_SetString(PyExc_RuntimeError, "another bench is open in this process");
        throw py::error_already_set();
    }
    WStringArray reports = System::Start(dataFolder, profileFolder);
    isOpen_lc = true;
    ++opened_lc;
    return reports;
}

/// What cannot be opened leaves its object empty.
template <typename Data>
static void Empty(const Data& load)
try {
    load();
} catch (const HostException& failure) {
    if (!IsHostError(failure, HostError::FileError))
        throw;
}

void Bench::Close()
{
    Running::RequireNone("the bench cannot be closed");
    if (!isOpen_lc)
        return;
    isOpen_lc = false;
    System::usage.WriteCounts();
    Empty([] { System::usage.Open("/dev/null/none"); });
    Empty([] { System::config.Load("/dev/null/none"); });
    Empty([] { System::status.Load("/dev/null/none"); });
    LogFile::Attach("", [](const WString&, bool) { return false; });
}

BenchTable::BenchTable() : bench(opened_lc) {}

void BenchTable::RequireOpen() const
{
    if (!isOpen_lc || bench != opened_lc)
        throw py::value_error("the bench is closed");
}

[[noreturn]] static void RaiseOsError(const WString& reason)
{
    PyErr_SetObject(PyExc_OSError, ToPython(reason).ptr());
    throw py::error_already_set();
}

/// Does what may wait for other processes, or for the disk.
template <typename Work>
static auto Wait(const Work& work)
{
    const LongRun run;
    return work();
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
    if (IsTruth(value))
        return ST_Bool;
    if (PyUnicode_Check(value.ptr()))
        return ST_String;
    return PyLong_Check(value.ptr()) ? ST_Int : ST_Double;
}

py::object StatusTableOfBench::Get(const WString& name)
{
    RequireOpen();
    StatusValue item;
    return System::status.TryGet(name, item) ? ReadItem(item) : py::object();
}

void StatusTableOfBench::Set(const WString& name, py::handle value)
{
    RequireOpen();
    const bool isCode = System::status.GetItemType(name) == ST_ExitCode && PyTuple_Check(value.ptr());
    const WString text = isCode ? ToText(py::str(value)) : WriteValue(value);
    const StatusType type = ChooseType(value);
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
    RequireOpen();
    return Wait([&] {
        const bool isDeleted = System::status.TryDelete(name);
        System::status.Save();
        return isDeleted;
    });
}

WStringArray StatusTableOfBench::GetNames()
{
    RequireOpen();
    WStringArray names;
    System::status.GetNames(names);
    return names;
}

py::object ConfigTable::Get(const WString& name)
{
    RequireOpen();
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
    RequireOpen();
    const WString text = WriteValue(value);
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
    RequireOpen();
    return Wait([&] {
        const bool isDeleted = System::config.TryDelete(section, name);
        System::config.Save();
        return isDeleted;
    });
}

WStringArray ConfigTable::GetNames()
{
    RequireOpen();
    WStringArray keys;
    System::config.GetKeys(section, keys);
    return keys;
}

WStringArray ConfigTable::GetSections()
{
    WStringArray sections;
    System::config.GetSections(sections);
    return sections;
}

py::object UsageTable::Get(const WString& name)
{
    RequireOpen();
    int value = 0;
    const bool isThere = Wait([&] { return System::usage.TryGetUsageValue(name.ToCString(), value); });
    return isThere ? py::object(py::int_(value)) : py::object();
}

void UsageTable::Set(const WString& name, py::handle value)
{
    RequireOpen();
    const int number = ToInt(value);
    if (!Wait([&] { return System::usage.Set(name.ToCString(), number); }))
        RaiseOsError(System::usage.GetFault());
}

bool UsageTable::TryDelete(const WString& name)
{
    RequireOpen();
    return Wait([&] { return System::usage.TryDelete(name.ToCString()); });
}

WStringArray UsageTable::GetNames()
{
    RequireOpen();
    WStringArray names;
    Wait([&] { System::usage.GetNames(names); });
    return names;
}

py::object EventTable::Get(const WString& name)
{
    RequireOpen();
    OS9EventData* const event = OS9EventManager::GetOS9Event(name);
    if (!event)
        return {};
    const int value = event->Read();
    event->ReleaseReference();
    return py::int_(value);
}

void EventTable::Set(const WString& name, py::handle value)
{
    RequireOpen();
    const int number = ToInt(value);
    if (OS9EventData* const event = OS9EventManager::GetOS9Event(name)) {
        event->Write(number);
        event->ReleaseReference();
    } else if (!OS9EventManager::TryCreate(name, number)) {
        throw py::value_error("an event has a name of 1 to 63 characters, and there is room for 256");
    }
}

bool EventTable::TryDelete(const WString& name)
{
    RequireOpen();
    return OS9EventManager::TryDelete(name);
}

WStringArray EventTable::GetNames()
{
    RequireOpen();
    WStringArray names;
    OS9EventManager::GetNames(names);
    return names;
}
