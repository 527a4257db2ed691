import copy
import fractions
import math
import pickle
import threading

import pytest

import labshell
from labshell import Error, Evaluator


@pytest.mark.parametrize("expression, value", [
    ("1+2*3", 7.0),
    ("-2^2", 4.0),
    ("2>1", True),
    ("2=1", False),
    ('"Sample " & "A7"', "Sample A7"),
    ('"12"', "12"),
    ('""', ""),
    ('"µ𝔐€"', "µ𝔐€"),
    ("0x10", 16.0),
    ("Max(1,2,3)", 3.0),
    ("1" + "+1" * 20000, 20001.0),
])
def test_values_have_the_types_of_python(expression, value):
    found = labshell.evaluate(expression)
    assert (found, type(found)) == (value, type(value))
    assert Evaluator()(expression) == Evaluator().evaluate(expression) == value


@pytest.mark.parametrize("expression, code, message, position, caret", [
    ("1/0", "0:505:133", "Divide by zero", 3, "1/0\n  ^"),
    ("1+2/*3", "0:505:20", "Expecting operand", 5, "1+2/*3\n    ^"),
    ("speed+1", "0:505:48", "Missing variable: speed", 1, "speed+1\n^"),
    ("", "0:505:17", "Operand Expected", 0, None),
    ('"\t"&*2', "0:505:20", "Expecting operand", 5, '" "&*2\n    ^'),
    ("1+" * 60 + "*", "0:505:20", "Expecting operand", 121, ("+1" * 23 + "+*")[-47:] + "\n" + " " * 46 + "^"),
])
def test_errors_tell_code_message_and_place(expression, code, message, position, caret):
    with pytest.raises(Error) as raised:
        labshell.evaluate(expression)
    error = raised.value
    assert (str(error.code), error.message, error.position, error.text) == (code, message, position, expression)
    assert error.caret == caret
    assert str(error) == f"{code} {message}" + (f"\n{caret}" if caret else "")
    for again in (pickle.loads(pickle.dumps(error)), copy.copy(error), copy.deepcopy(error)):
        assert (str(again), again.args, type(again), type(again.code)) == (str(error), error.args, Error, labshell.ExitCode)


def test_variables_are_a_mapping_without_regard_to_case():
    ev = Evaluator({"Speed": 2, "ready": True, "name": "A7"})
    assert dict(ev.variables) == {"name": "A7", "ready": True, "Speed": 2.0}
    assert list(ev.variables) == ["name", "ready", "Speed"] and len(ev.variables) == 3
    assert ev("SPEED*3") == 6.0 and "sPEED" in ev.variables and 7 not in ev.variables
    ev.variables["speed"] = 5
    assert list(ev.variables)[2] == "Speed" and ev("speed") == 5.0
    assert ev.variables.pop("SPEED") == 5.0 and "speed" not in ev.variables
    for name in ("speed", "\ud800", ""):
        with pytest.raises(KeyError):
            ev.variables[name]
    with pytest.raises(KeyError, match="speed"):
        del ev.variables["speed"]
    with pytest.raises(Error, match="Missing variable: speed"):
        ev("speed")
    assert ev.variables.setdefault("n", 1) == 1.0 and ev.variables.popitem() == ("n", 1.0)
    assert ev.variables == {"name": "A7", "ready": True} and repr(ev.variables) == "Values({'name': 'A7', 'ready': True})"
    ev.variables.clear()
    assert ev.variables == {} and repr(ev) == "Evaluator({})"
    ev.variables.update(e=1)
    assert ev("e") == 1.0


@pytest.mark.parametrize("given, value", [
    (True, True), (3, 3.0), (2.5, 2.5), ("x", "x"), ("", ""), (fractions.Fraction(1, 4), 0.25), (10**20, 1e20),
])
def test_variables_take_what_python_takes_for_a_value(given, value):
    ev = Evaluator()
    ev.variables["x"] = given
    found = ev("x")
    assert (found, type(found)) == (value, type(value))


@pytest.mark.parametrize("name, value, exception", [
    ("x", None, TypeError), ("x", b"x", TypeError), ("x", 1j, TypeError), ("x", [1], TypeError), ("x", 10**400, OverflowError),
    ("x", "a\0b", ValueError), ("x\0", 1, ValueError), ("", 1, ValueError), ("a b", 1, ValueError), ("1a", 1, ValueError),
    ("x", type("numpy.bool", (), {"__bool__": lambda self: 1 / 0})(), ZeroDivisionError), ("ä", 1, ValueError), ("x" * 64, 1, ValueError), (7, 1, TypeError), (None, 1, TypeError), ("x", "x" * (2**24 + 1), Error),
])
def test_variables_refuse_the_rest(name, value, exception):
    ev = Evaluator()
    with pytest.raises(exception):
        ev.variables[name] = value
    assert dict(ev.variables) == {}


def test_options():
    ev = Evaluator({"x": 2}, trace=True)
    assert ev("Sqrt(x*8)") == 4.0 and ev.trace == ["x=2", "Function:sqrt=4"]
    assert ev("1") == 1.0 and ev.trace == []
    assert math.isclose(Evaluator()("e"), math.e)
    with pytest.raises(Error, match="Missing variable: e"):
        Evaluator(e_is_constant=False)("e")
    with pytest.raises(TypeError):
        Evaluator({}, True)
    with pytest.raises(TypeError):
        copy.copy(ev)


def test_no_instrument(bench):
    assert Evaluator()("%S{TempOptics}") == 36.8
    with pytest.raises(Error):
        Evaluator(instrument=False)("%S{TempOptics}")


def test_threads_take_turns_with_an_evaluator_and_need_none_with_their_own():
    shared = Evaluator({"x": 1})
    failures = []

    def work(number):
        own = Evaluator({"x": number})
        try:
            for i in range(300):
                shared.variables[f"v{number}"] = i
                assert shared(f"v{number}+x") == i + 1
                assert own("x") == number
                assert own("x" + "+x" * 1000) == number * 1001
        except BaseException as error:
            failures.append(error)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures
