import math
import os
import pickle
import shutil
import signal
import threading
import time
import warnings

import pytest

import labshell
from labshell import Bench, CommandError, ExitCode


class Whole:
    """A whole number that does something when it is asked for its value."""

    def __init__(self, ask=lambda: None):
        self.ask = ask

    def __index__(self):
        self.ask()
        return 2


def test_commands_write_and_fail():
    assert labshell.run("Calc 1+2*3") == "7" and labshell.run("") == ""
    assert labshell.run("Calc x*2", {"x": 4}) == "8"
    assert labshell.run("While -c3 true Do Calc i").count("\n") == 2
    with pytest.raises(CommandError) as raised:
        labshell.run("calc 1/0")
    error = raised.value
    assert (error.code, error.message, error.line) == (ExitCode(1043, 505, 133), "Divide by zero", "calc 1/0")
    again = pickle.loads(pickle.dumps(error))
    assert vars(again) == vars(error) and str(again) == str(error)
    assert error.output == "Error:\n  Divide by zero\n  1/0\n    ^" and str(error) == "1043:505:133 Divide by zero"
    with pytest.raises(CommandError, match=r"0:1:2 Unknown command: Clc \(did you mean Calc\?\)"):
        labshell.run("Clc 1")
    with pytest.raises(CommandError, match='\nnote: .*write options in front') as raised:
        labshell.run("Calc 3 -q")
    assert len(raised.value.notes) == 1


def test_scripts_run_on_a_bench(bench, tmp_path):
    bench.status["Text"] = "12"
    script = tmp_path / "script.txt"
    script.write_text("Status Text\nSet x=6*7\nEcho x is %E{x}\nCalc 1/0\n")
    with pytest.raises(CommandError, match="script.txt:4: Calc: Divide by zero") as raised:
        bench.run(f"Run {script}")
    assert raised.value.output.startswith("Text=12\nx is 42\nError:")
    assert bench.usage["Command.Echo"] == 1


def test_a_bench_holds_what_commands_read_and_set(bench):
    status, config, usage, events = bench.status, bench.config, bench.usage, bench.events
    assert (status["tempoptics"], status["HotelDoorOpen"], status["DetectorGain"], status["InstrumentType"]) == \
        (36.8, False, -12, "X9")
    assert status["LastExitCode"] == ExitCode(0, 0, 0) and status["VersionText"].startswith("OrvaneX9 4")
    status.update(TempOptics=40, HotelDoorOpen=True, LastExitCode=ExitCode(1, 2, 3), New=Whole(), Other=2.5, Text="12")
    assert bench.evaluate('%S{TempOptics} & %S{HotelDoorOpen} & %S{New} & %S{Text}') == "40TRUE212"
    assert [status[name] for name in ("LastExitCode", "New", "Other", "Text")] == [(1, 2, 3), 2, 2.5, "12"]
    assert type(status["New"]) is int
    del status["New"]
    for name, value in [("TempOptics", "warm"), ("InfoDate", "x"), ("TempOptics", True)]:
        with pytest.raises(ValueError):
            status[name] = value
    assert "New" not in status and status["TempOptics"] == 40.0

    assert config["detection"]["maxlight"] == 4095.0 and config["Detection"]["Filter"] == "Green 530"
    config["Lab"]["Ready"] = True
    assert bench.evaluate("%C{Lab Ready}") is True and "lab" in config and list(config)[-1] == "Lab"
    assert config.get("lab")["ready"] is True and config.get("Nonsense") is None and "Nonsense" not in config
    for section, key, value in [("Lab", "a", math.inf), ("Lab", "a=b", 1), ("La]b", "a", 1), ("Lab", "a", "x\ny"), ("", "a", 1), ("Lab", "", 1)]:
        with pytest.raises(ValueError):
            config[section][key] = value

    usage["Door"] = 3
    assert dict(usage) == {"Door": 3} and bench.evaluate("%U{Door}+1") == 4.0
    events["Go"] = -1
    events["Go"] = 2
    assert events["Go"] == 2 and "go" not in events
    for table in (usage, events):
        with pytest.raises(ValueError):
            table["Big"] = 2**31
        with pytest.raises(TypeError):
            table["Big"] = 1.5
    del usage["Door"], events["Go"]
    assert dict(usage) == {} and dict(events) == {}

    with pytest.raises(ValueError, match="not finite"):
        bench.variables["x"] = math.nan
    bench.variables["x"] = 5
    assert bench.run("Set y=x+1") is not None and bench.evaluate("x+y") == 11.0
    assert dict(bench.variables) == {"x": 5.0, "y": 6.0}
    del bench.variables["x"]
    assert dict(bench.variables) == {"y": 6.0}


def test_data_stay_in_a_folder_of_their_own_and_go_away_in_a_temporary_one(tmp_path):
    for temperature in (36.8, 41.0):
        with Bench(tmp_path / "data\udcff") as bench:
            assert bench.status["TempOptics"] == temperature and os.path.samefile(bench.folder, tmp_path / "data\udcff")
            bench.status["TempOptics"] = 41

    def get_tables(bench):
        return bench.status, bench.config["Lab"], bench.usage

    (tmp_path / "script.txt").write_text("Echo")
    with Bench(tmp_path) as bench:
        for table in get_tables(bench):
            table.update(Lost=2, Kept=1)
        bench.run(f"Run {tmp_path}/script.txt")
    with Bench(tmp_path) as bench:
        assert bench.usage["Command.Echo"] == 1
        for table in get_tables(bench):
            assert (table["Kept"], table["Lost"]) == (1, 2)
            del table["Lost"]
            assert "Lost" not in table
    with Bench(tmp_path) as bench:
        for table in get_tables(bench):
            assert "Kept" in table and "Lost" not in table
    with Bench() as bench:
        folder = bench.folder
        with pytest.raises(AttributeError):
            bench.folder = tmp_path
        assert repr(bench) == f"Bench({folder!r})"
        assert os.path.isfile(folder + "/Config.ini") and bench.status["TempOptics"] == 36.8
        bench.usage["Kept"] = 1
        shutil.rmtree(folder)
        for table in get_tables(bench):
            with pytest.raises(OSError, match=folder):
                table["Lost"] = 1
    assert not os.path.exists(folder)
    with pytest.raises(ValueError, match="null character"):
        Bench("a\0b")


def test_damaged_data_are_warned_of(tmp_path):
    (tmp_path / "Status.ini").write_text("[Items]\nNonsense\n")
    with pytest.warns(RuntimeWarning, match="Status.ini"):
        bench = Bench(tmp_path)
    bench.close()
    (tmp_path / "file").write_text("")
    with warnings.catch_warnings(), pytest.raises(RuntimeWarning):
        warnings.simplefilter("error")
        Bench(tmp_path / "file")
    with pytest.warns(RuntimeWarning, match="file"):
        Bench(tmp_path / "file").close()


def test_one_bench_at_a_time_and_none_after_the_end():
    bench = Bench()
    with pytest.raises(RuntimeError, match="another bench is open"):
        Bench()
    status, config = bench.status, bench.config
    bench.close()
    bench.close()
    for use in (lambda: bench.run("Calc 1"), lambda: bench.evaluate("1"), lambda: status["TempOptics"], lambda: list(status),
                lambda: bench.usage["x"], lambda: bench.events.update(x=1), lambda: bench.config["Log"]["EELog"]):
        with pytest.raises(ValueError, match="closed"):
            use()
    with Bench():
        for use in (lambda: status["TempOptics"], lambda: list(config), lambda: len(config), lambda: config["Log"],
                    lambda: bench.status, lambda: bench.config, lambda: bench.usage, lambda: bench.events, lambda: bench.variables):
            with pytest.raises(ValueError, match="closed"):
                use()
    for get_table in (lambda bench: bench.status, lambda bench: bench.config["Lab"], lambda bench: bench.usage, lambda bench: bench.events):
        with Bench() as bench, pytest.raises(ValueError, match="closed"):
            get_table(bench)["x"] = Whole(bench.close)
    with pytest.raises(labshell.Error):
        labshell.evaluate("%S{TempOptics}")


def test_an_interrupt_ends_a_command(bench):
    handler = signal.getsignal(signal.SIGINT)
    timer = threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT))
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        bench.run("While -c2000000000 true Do Set n=i")
    timer.join()
    assert bench.run("Calc n>0") == "TRUE" and signal.getsignal(signal.SIGINT) is handler


def test_abort_ends_the_commands_of_other_threads(bench):
    ended = []

    def work():
        try:
            bench.run("While -c2000000000 true Do Set n=i")
        except CommandError as error:
            ended.append(error)

    labshell.abort()  # of nothing
    thread = threading.Thread(target=work)
    thread.start()
    time.sleep(0.2)
    with pytest.raises(RuntimeError, match="while an expression or a command runs"):
        bench.close()
    assert thread.is_alive() and bench.status["TempOptics"] == 36.8
    labshell.abort()
    thread.join()
    assert ended[0].code.module == 1 and "Aborted" in ended[0].message
    assert bench.run("Calc 1") == "1"
