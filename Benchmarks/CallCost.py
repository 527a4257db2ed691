"""What a call costs: an expression from C++, from Python, from a script of labsh, and by a process of its own.

    Tools/build.sh release all shell tests python
    Tools/build.sh release Benchmarks shell benchmarks
    PYTHONPATH=build/release/python python3 Benchmarks/CallCost.py

Prints a table in microseconds of processor time: medians of rounds in which all take turns.
"""

import os
import pathlib
import re
import resource
import statistics
import subprocess
import tempfile
import time
import timeit

os.environ["LABSH_EVENTS"] = f"labsh-benchmark-{os.getpid()}"

import labshell

BIN = pathlib.Path(__file__).parents[1] / "build/release/bin"
ROUNDS = 11
EXPRESSIONS = ["1+2*3", "a+b*c-d/2", "max(a,b)+min(c,d)"]
VARIABLES = {"a": 1999.0, "b": 3.0, "c": 4.0, "d": 5.0}


def time_statement(statement, names, count):
    """Microseconds of a statement of Python."""
    return timeit.Timer(statement, timer=time.process_time, globals=names).timeit(count) / count * 1e6


def time_process(*arguments):
    """Microseconds of another process, with its start and end."""
    def spent():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime

    start = spent()
    subprocess.run(arguments, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return (spent() - start) * 1e6


def time_native(expression, count=200000):
    """Microseconds of an evaluation in C++, without the start of the program."""
    few, many = (time_process(BIN / "Benchmarks", expression, str(calls)) for calls in (1, count))
    return (many - few) / (count - 1)


def time_lines(folder, line, count=10000):
    """Microseconds of a line of a script, without the start of the shell."""
    times = []
    for lines in (1, count):
        script = pathlib.Path(folder, f"{lines}.txt")
        script.write_text("".join(f"Set {name}={value}\n" for name, value in VARIABLES.items()) + (line + "\n") * lines)
        times.append(time_process(BIN / "labsh", "-f", script))
    return (times[1] - times[0]) / (count - 1)


def make_rows(text, bench, folder):
    """What is measured: a title and a call that measures it once."""
    command = "Calc " + text
    names = {"ev": labshell.Evaluator(VARIABLES), "text": text, "code": compile(text, "", "eval"), "bench": bench,
             "command": command, "own": VARIABLES, "scope": {}, "x": 1999.0}
    names["variables"] = names["ev"].variables
    assert names["ev"](text) == eval(text, {}, VARIABLES) == float(bench.run(command))
    numbers = re.sub(r"\b[abcd]\b", lambda name: f"{VARIABLES[name[0]]:g}", command)
    return {
        "C++: `evaluator.TryEvaluate(text, result)`": lambda: time_native(text),
        "`ev(text)`": lambda: time_statement("ev(text)", names, 20000),
        "`variables[\"a\"] = x; ev(text)`": lambda: time_statement("variables['a'] = x; ev(text)", names, 20000),
        "`labshell.evaluate(text, variables)`": lambda: time_statement("evaluate(text, own)", names | vars(labshell), 2000),
        "`bench.run(\"Calc \" + text)`": lambda: time_statement("bench.run(command)", names, 5000),
        "Python's `eval(text, names)`": lambda: time_statement("eval(text, scope, own)", names, 2000),
        "Python's `eval(code, names)`, compiled before": lambda: time_statement("eval(code, scope, own)", names, 20000),
        "a line `Calc ...` of a script, `labsh -f`": lambda: time_lines(folder, command),
        "a process, `labsh 'Calc ...'`": lambda: time_process(BIN / "labsh", numbers),
    }


def measure(text):
    """The median of each row."""
    with tempfile.TemporaryDirectory() as folder, labshell.Bench(os.path.join(folder, "bench")) as bench:
        os.environ["LABSH_HOME"] = os.path.join(folder, "data")
        bench.variables.update(VARIABLES)
        rows = make_rows(text, bench, folder)
        rounds = [{title: time_once() for title, time_once in rows.items()} for _ in range(ROUNDS)]
        return {title: statistics.median(times[title] for times in rounds) for title in rows}


def main():
    columns = [measure(text) for text in EXPRESSIONS]
    print("| a call, in µs | " + " | ".join(f"`{text}`" for text in EXPRESSIONS) + " |")
    print("|---|" + "--:|" * len(EXPRESSIONS))
    for title in columns[0]:
        print(f"| {title} | " + " | ".join(f"{column[title]:.2f}" for column in columns) + " |")


main()
