#pragma once

#include "HostApi.h"
#include "Instrument/StatusValue.h"
#include "Text/WStringArray.h"

#include <functional>
#include <limits>
#include <memory>
#include <string>

/// The instrument's status values by name (any case). Safe under threads. Try operations return false, and write
/// nothing, when the item is absent, of another type, or out of range; TryGetInt and TryGetUInt read all the integer
/// types. Values are without blanks at both ends and hold no line break, as the file could not keep them.
///
/// Reading and setting operations first make delayed values that are due take effect, and take over what other
/// processes changed in the file: an item whose text there is a new one gets it, and one that was removed there is
/// dropped; a file that is gone altogether changes nothing. They look at the file once in 50 ms of
/// the host's clock, so that reading in a loop is cheap.
class HOST_API StatusTable
{
public:
    StatusTable();
    ~StatusTable();
    StatusTable(const StatusTable&) = delete;
    StatusTable& operator=(const StatusTable&) = delete;

    /// Replaces the items that are not live by those of an INI file, and forgets delayed values: a section "[Items]"
    /// with lines "Name=type:value", type one of bool, double, string, exitcode, formatted, int, uint, uint64. A line
    /// that does not fit gives no item and stays as it is. In place of an absent file serves `defaults`, if it is given
    /// and there. Throws HostException (FileError or Aborted): there are no items then, until the file can be read.
    void Load(const std::string& path, const std::string& defaults = "");
    /// A line for each line of the file that did not fit when it was loaded: the file, the number and why.
    void GetFaults(WStringArray& faults) const;
    /// Looks at the file at once. A file that cannot be read just then changes nothing, nor does a line that does not
    /// fit, perhaps half edited.
    void Refresh();

    /// The item's type and value, of one moment: what others do to the table between two operations cannot come between
    /// them. False when there is no such item.
    bool TryGet(const WString& name, StatusValue& item) const;
    bool ContainsItem(const WString& name) const;
    /// Whether it is a live item, see AddLive.
    bool IsLive(const WString& name) const;
    /// The item's type, ST_None when there is no such item.
    int GetItemType(const WString& name) const;
    bool TryGetBool(const WString& name, bool& value) const;
    bool TryGetDouble(const WString& name, double& value, double min = std::numeric_limits<double>::lowest(),
        double max = std::numeric_limits<double>::max()) const;
    bool TryGetString(const WString& name, WString& value) const;
    bool TryGetExitCode(const WString& name, ExitCode& value) const;
    bool TryGetInt(const WString& name, int& value, int min, int max) const;
    bool TryGetUInt(const WString& name, unsigned int& value, unsigned int min, unsigned int max) const;
    /// The value of an item of any type as text. Refused for a formatted item that refers, directly or through others,
    /// to itself or to an absent item, or that needs more than 100 items.
    bool TryGetFormattedString(const WString& name, WString& value) const;

    /// Gives an existing item a value of its type from text, or makes a new one whose type is read off the text
    /// (true/false bool, whole number int, other number double, else string). False when the text does not fit the
    /// item's type, or the item is live.
    bool TrySet(const WString& name, const WString& value);
    /// As TrySet, to take effect in this process after a delay (24 days at most). False when TrySet would fail now; a
    /// value that no longer fits when it is due is dropped. Replaces an earlier delayed value. For `travel` more
    /// milliseconds a number goes there evenly from what it is when the delay has ended, until it is set otherwise.
    bool TrySetAfter(const WString& name, const WString& value, unsigned int milliseconds, unsigned int travel = 0);
    /// False when there is no such item, or it is live.
    bool TryDelete(const WString& name);
    /// Makes all delayed values take effect now.
    void SetDelayed();
    /// Adds or replaces an item of a type with its value as text; false when the text does not fit.
    bool TryAdd(const WString& name, StatusType type, const WString& value);
    /// A live item: its text is asked for at every reading, by the thread that reads. Outlives Load, and hides the
    /// file's item of that name.
    void AddLive(const WString& name, StatusType type, std::function<WString()> read);
    /// Writes what was changed back to the file, in one step, on top of what others changed there. Throws HostException
    /// (FileError, or Aborted while another process saves), and the changes since the last saving are undone, those of
    /// other threads too.
    void Save();
    /// All names, sorted.
    void GetNames(WStringArray& names) const;

private:
    struct Data;
    std::unique_ptr<Data> data;
};
