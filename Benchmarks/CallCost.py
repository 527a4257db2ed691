"""What a call costs: an expression from Python, from C++, from a script of labsh, and by a process of its own.

    PYTHONPATH=build/release/python python3 Benchmarks/CallCost.py

Prints a table in microseconds of processor time: medians of rounds in which all take turns. C++ is measured
where build/release/bin/Benchmarks has been built.
"""

import os
import pathlib
import resource
import statistics
import subprocess
import tempfile
import time

import labshell

ROOT = pathlib.Path(__file__).parents[1]
BIN = ROOT / "build/release/bin"
ROUNDS = 15
EXPRESSIONS = ["1+2*3", "a+b*c-d/2"]
VARIABLES = {"a": 1999.0, "b": 3.0, "c": 4.0, "d": 5.0}


def time_calls(call, count):
    """Microseconds a call of this process."""
    start = time.process_time_ns()
    for _ in range(count):
        call()
    return (time.process_time_ns() - start) / count / 1000


def time_process(*arguments):
    """Microseconds of another process, with its start and end."""
    def spent():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime

    start = spent()
    subprocess.run(arguments, check=True, stdout=subprocess.DEVNULL)
    return (spent() - start) * 1e6


def time_lines(folder, line, count=5000):
    """Microseconds a line of a script, without the start of the shell."""
    times = []
    for lines in (1, count):
        script = pathlib.Path(folder, f"{lines}.txt")
        script.write_text("Set a=1999\nSet b=3\nSet c=4\nSet d=5\n" + (line + "\n") * lines)
        times.append(time_process(BIN / "labsh", "-f", script))
    return (times[1] - times[0]) / (count - 1)


def time_native(expression, count=200000):
    """Microseconds of an evaluation in C++, without the start of the program."""
    few, many = (time_process(BIN / "Benchmarks", expression, str(calls)) for calls in (1, count))
    return (many - few) / (count - 1)


def make_rows(expression, folder):
    """What is measured: a title and a call that measures it once."""
    ev = labshell.Evaluator(VARIABLES)
    code = compile(expression, "", "eval")
    session = labshell.Bench(os.path.join(folder, "bench"))
    session.variables.update(VARIABLES)
    command = "Calc " + expression
    assert ev(expression) == eval(code, {}, VARIABLES) == float(session.run(command))
    native = {"C++: `TryEvaluate`": lambda: time_native(expression)} if (BIN / "Benchmarks").exists() else {}
    return native | {
        "Python: `eval` of compiled code": lambda: time_calls(lambda: eval(code, {}, VARIABLES), 10000),
        "Python: `ev(text)`": lambda: time_calls(lambda: ev(expression), 10000),
        "Python: `eval(text)`": lambda: time_calls(lambda: eval(expression, {}, VARIABLES), 2000),
        "Python: `bench.run(\"Calc ...\")`": lambda: time_calls(lambda: session.run(command), 2000),
        "`labsh -f`: a line `Calc ...`": lambda: time_lines(folder, command),
        "`labsh 'Calc ...'`: a process": lambda: time_process(BIN / "labsh", "Calc 1+2*3"),
    }, session


def main():
    os.environ["LABSH_EVENTS"] = f"labsh-benchmark-{os.getpid()}"
    table = {}
    for expression in EXPRESSIONS:
        with tempfile.TemporaryDirectory() as folder:
            os.environ["LABSH_HOME"] = os.path.join(folder, "data")
            rows, bench = make_rows(expression, folder)
            times = {title: [] for title in rows}
            for _ in range(ROUNDS):
                for title, measure in rows.items():
                    times[title].append(measure())
            bench.close()
        for title, measured in times.items():
            table.setdefault(title, {})[expression] = statistics.median(measured)
    print("| a call, in µs | " + " | ".join(f"`{expression}`" for expression in EXPRESSIONS) + " |")
    print("|---|" + "--:|" * len(EXPRESSIONS))
    for title, cells in table.items():
        print(f"| {title} | " + " | ".join(f"{cells[expression]:.2f}" for expression in EXPRESSIONS) + " |")


main()
