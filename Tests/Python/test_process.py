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
     "        for write in (lambda: labshell.run('Status -n TempOptics=1'), lambda: bench.status.update(TempOptics=2)):\n"
     "            try: write(); os._exit(1)\n"
     "            except (labshell.CommandError, ValueError): pass\n"
     "        with labshell.Bench() as own: own.status['TempOptics'] = 3\n"
     "        sys.exit()\n"
     "    assert os.wait()[1] == 0\n"
     "    assert 'TempOptics=double:36.8\\n' in open(bench.folder + '/Status.ini') and bench.status['TempOptics'] == 36.8", None),
    ("bench = labshell.Bench(); print(bench.folder)\n"
     "thread = threading.Thread(target=labshell.run, args=('Wait 0.3',)); thread.start(); time.sleep(0.1)\n"
     "del bench; thread.join()", None),
    ("bench = labshell.Bench(); print(bench.folder)\n"
     "thread = threading.Thread(target=labshell.run, args=('Wait 0.3',)); thread.start(); time.sleep(0.1)\n"
     "del bench; thread.join(); labshell.Bench().close()", None),
    ("labshell.function(lambda x: time.sleep(x) or 1, name='Py_Nap')\n"
     "def loop():\n"
     "    ev = labshell.Evaluator()\n"
     "    while True: ev('Py_Nap(0.0005)')\n"
     "for _ in range(8): threading.Thread(target=loop, daemon=True).start()\n"
     "time.sleep(0.2); print('end')", "end"),
    ("libc = ctypes.CDLL(None); libc.signal.restype = ctypes.c_void_p; libc.signal.argtypes = ctypes.c_int, ctypes.c_void_p\n"
     "def run(line):\n"
     "    thread = threading.Thread(target=labshell.run, args=(line,), daemon=True); thread.start(); time.sleep(0.1); return thread\n"
     "thread = run('Wait 0.3'); former = libc.signal(2, 1); thread.join(); libc.signal(2, former)\n"
     "run('Wait 9')\n"
     "try: os.kill(os.getpid(), 2); time.sleep(9)\n"
     "except KeyboardInterrupt: print('interrupted')", "interrupted"),
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
    ("ev = labshell.Evaluator.__new__(labshell.Evaluator); ev('1'); ev.__init__(); ev.__init__({'x': 1}); print(ev('x'))", "1.0"),
    ("v = labshell.Evaluator({'x': 1}).variables; gc.collect(); print(v['x'])", "1.0"),
    ("class Own(labshell.Evaluator):\n"
     "    def __init__(self, path, *, n): self.path = path\n"
     "own = Own('x', n=2); own.own = own; lost = weakref.ref(own); print(own('1+1'))\n"
     "del own; gc.collect(); assert lost() is None", "2.0"),
    ("S, T = labshell._labshell.Session, labshell._labshell.Table\n"
     "for use in (lambda: T.__new__(T), lambda: T('variables', 3), lambda: T('config'), lambda: T('x'), lambda: labshell.Values(1),\n"
     "            lambda: S()._run(1), lambda: S()(1), lambda: S()(), lambda: S()('1', other=2), lambda: S()._add_flags(-1),\n"
     "            lambda: type('Both', (S, T), {}), lambda: object.__new__(S)):\n"
     "    try: print(use())\n"
     "    except (OverflowError, TypeError, ValueError): pass\n"
     "print(S.__new__(S)(expression='1'))", "1.0"),
    ("class Lost(Exception): pass\n"
     "def fail(x):\n"
     "    error = Lost(); lost.append(weakref.ref(error)); raise error\n"
     "lost = []; labshell.function(fail, name='Py_Lost')\n"
     "print(labshell.evaluate('IF(IsErr(Py_Lost(1)),1,2)'), gc.collect() and lost[0]())", "1.0 None"),
    ("class Last:\n"
     "    def __call__(self, x): return 1\n"
     "    def __del__(self): print(labshell.evaluate('Py_Last(1)'))\n"
     "labshell.function(Last(), name='Py_Last'); labshell.function(lambda x: 2, name='Py_Last')", "2.0"),
    ("threading.Thread(target=labshell.run, args=('While -c2000000000 true Do Set n=i',), daemon=True).start(); time.sleep(0.2)\n"
     "if os.fork() == 0:\n"
     "    labshell.function(lambda x: x, name='Py_Child'); labshell.abort()\n"
     "    sys.exit(0 if labshell.run('Calc Py_Child(1)') == '1' else 1)\n"
     "print(os.wait()[1])", "0"),
])
def test_no_use_breaks_python(in_process, code, output):
    status, written, errors = in_process("import ctypes, gc, labshell, os, sys, threading, time, weakref\n" + code)
    assert status == 0, errors
    if output is None:
        assert not os.path.exists(written.strip())
    else:
        assert written.strip() == output
