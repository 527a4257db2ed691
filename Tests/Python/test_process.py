"""What ends or forks a process, or might."""

import os

import pytest


def test_a_subinterpreter_is_refused(in_process):
    code = ("import {}_xxsubinterpreters as sub\n"
            "i = sub.create()\n"
            "try: sub.run_string(i, 'import labshell')\n"
            "except sub.RunFailedError as error: print(error)\n")
    for first in ("", "labshell, "):
        status, output, errors = in_process(code.format(first))
        assert (status, "main interpreter alone" in output) == (0, True), errors


@pytest.mark.parametrize("code, output", [
    ("bench = labshell.Bench(); print(bench.folder)", None),
    ("with labshell.Bench() as bench:\n"
     "    print(bench.folder, flush=True)\n"
     "    if os.fork() == 0:\n"
     "        try: bench.run('Calc 1')\n"
     "        except ValueError: sys.exit()\n"
     "    assert os.wait()[1] == 0\n"
     "    assert os.path.isdir(bench.folder) and bench.status['TempOptics'] == 36.8", None),
    ("bench = labshell.Bench(); print(bench.folder)\n"
     "threading.Thread(target=bench.run, args=('While -c2000000000 true Do Set n=i',), daemon=True).start()\n"
     "time.sleep(0.2)", None),
    ("threading.Thread(target=labshell.run, args=('While -c2000000000 true Do Set n=i',), daemon=True).start()\n"
     "time.sleep(0.2); print('end')", "end"),
    ("for bad in ('\\ud800', '\"\\udfff\" & 1', '1+\\0', '(' * 10**6, 'x' * (2**24 + 1), '1+' * 10**5, '%S{' * 10**5):\n"
     "    for use in (labshell.evaluate, labshell.run, lambda text: labshell.run('Calc ' + text)):\n"
     "        try: use(bad)\n"
     "        except (labshell.Error, ValueError): pass\n"
     "print('end')", "end"),
    ("ev = labshell.Evaluator.__new__(labshell.Evaluator); ev.__init__(); ev.__init__({'x': 1}); print(ev('x'))", "1.0"),
    ("v = labshell.Evaluator({'x': 1}).variables; import gc; gc.collect(); print(v['x'])", "1.0"),
    ("class Own(labshell.Evaluator):\n"
     "    def __init__(self): pass\n"
     "print(Own()('1+1'))", "2.0"),
])
def test_no_use_breaks_python(in_process, code, output):
    status, written, errors = in_process("import labshell, os, sys, threading, time\n" + code)
    assert status == 0, errors
    if output is None:
        assert not os.path.exists(written.strip())
    else:
        assert written.strip() == output
