import functools
import os
import signal
import threading

import pytest

import labshell
from labshell import Error, Evaluator


@labshell.function
def Py_Area(width, height=1):
    return width * height


@labshell.function(name="Py.Join")
def join(*texts):
    return "-".join(texts)


@labshell.function
def Py_Fail(kind):
    raise {"value": ValueError("no\0good"), "empty": KeyError(), "mute": Mute(), "key": KeyboardInterrupt(),
           "none": Error(labshell.ExitCode(0, 0, 3), "other")}[kind]


labshell.function(max, name="Py.Most")


class Mute(Exception):
    def __str__(self):
        raise RuntimeError


@labshell.function
def Py_Ask(expression):
    return labshell.evaluate(expression)


@labshell.function
def Py_Give(what):
    return {"none": None, "list": [], "lone": "\ud800", "null": "\0"}[what]


@pytest.mark.parametrize("expression, value", [
    ("py_area(2,3)", 6.0),
    ("PY_AREA(2)", 2.0),
    ('py.join("a","b","c")', "a-b-c"),
    ("Sum(Py_Area(1),Py_Area(2))", 3.0),
    ("Py.Most(1,3,2)", 3.0),
    ('IF(IsErr(Py_Fail("value")),1,2)', 1.0),
    ('IsNA(Py_Give("none"))', True),
    ('Len(Py_Give("lone"))', 1.0),
])
def test_expressions_call_functions_of_python(expression, value):
    assert labshell.evaluate(expression) == value
    assert labshell.run("Calc " + expression).lower() == (f"{value:g}" if type(value) is float else str(value).lower())


@pytest.mark.parametrize("expression, message, cause", [
    ('1+Py_Fail("empty")', "Py_Fail: KeyError", KeyError),
    ('Py_Fail("value")', "Py_Fail: ValueError", ValueError),
    ('Py_Fail("mute")', "Py_Fail: Mute", Mute),
    ('Py_Fail("none")', "Py_Fail: other", Error),
    ('Py_Give("list")', "Py_Give: must be real number, not list", TypeError),
    ('Py_Give("null")', "Py_Give: embedded null character", None),
    ("Py_Area()", "Missing parameter", None),
    ("Py_Area(1,2,3)", "Py_Area takes 1 to 2 arguments, not 3", None),
    ("Py_Area(1/0)", "Divide by zero", None),
    ('Max(Py_Fail("value"),Py_Ask("1+1"))', "Py_Fail: ValueError", ValueError),
    ("Py_Area(nothing)", "Missing variable: nothing", None),
])
def test_what_a_function_raises_is_an_error_of_the_expression(expression, message, cause):
    with pytest.raises(Error) as raised:
        labshell.evaluate(expression)
    assert raised.value.message == message
    assert type(raised.value.__cause__) is (cause or type(None))
    assert cause in (None, TypeError) or raised.value.__cause__.__traceback__ is not None
    with pytest.raises(labshell.CommandError, match=message):
        labshell.run("Calc " + expression)


def test_an_interrupt_within_a_function_ends_everything():
    for call in (lambda text: labshell.evaluate(text), lambda text: labshell.run("Calc " + text)):
        with pytest.raises(KeyboardInterrupt):
            call('IF(IsErr(Py_Fail("key")),1,2)')
        assert call("1") in (1.0, "1")


def test_the_last_definition_counts():
    assert labshell.function(lambda x: 1, name="Py_New")(0) == 1 and labshell.evaluate("Py_New(0)") == 1.0
    labshell.function(lambda x, y: x + y, name="PY_NEW")
    assert labshell.evaluate("Py_New(2,3)") == 5.0


@pytest.mark.parametrize("name, definition, exception", [
    ("Max", lambda x: 1, ValueError), ("", lambda x: 1, ValueError), ("a b", lambda x: 1, ValueError), ("_a", lambda x: 1, ValueError),
    ("a\0", lambda x: 1, ValueError), ("x" * 64, lambda x: 1, ValueError), ("Py_No", 7, TypeError), (7, lambda x: 1, TypeError),
    ("Py_No", lambda *, key: 1, TypeError), ("Py_No", lambda: 1, TypeError),
    (None, functools.partial(max, 1), TypeError),
])
def test_definitions_that_are_refused(name, definition, exception):
    with pytest.raises(exception):
        labshell.function(definition, name=name)
    with pytest.raises(Error):
        labshell.evaluate("Py_No()")


def test_a_function_may_use_its_evaluator_but_define_nothing():
    ev = Evaluator({"x": 1})

    @labshell.function
    def Py_Inner(text):
        ev.variables["x"] = 10
        ev.variables.pop("y", None)
        return ev(text)

    @labshell.function
    def Py_Define(x):
        labshell.function(lambda x: 1, name="Py_Late")

    ev.variables["y"] = "long enough to be kept outside of the token"
    assert ev('x & y & Py_Inner("x+1") & y') == "1" + "long enough to be kept outside of the token" + "11" + \
        "long enough to be kept outside of the token"
    assert ev("x") == 10.0
    with pytest.raises(Error, match="a function cannot be defined while an expression or a command runs"):
        ev("Py_Define(1)")
    with pytest.raises(Error, match="nested too deeply|recursion"):
        labshell.function(lambda x: ev("Py_Again(1)"), name="Py_Again")
        ev("Py_Again(1)")
    with pytest.raises(Error, match="recursion|nested"):
        labshell.function(lambda x: Evaluator()("Py_Fresh(1)"), name="Py_Fresh")
        ev("Py_Fresh(1)")


@pytest.mark.parametrize("end, exception", [
    (labshell.abort, Error), (functools.partial(os.kill, os.getpid(), signal.SIGINT), KeyboardInterrupt),
])
def test_the_wait_for_a_turn_can_be_ended(end, exception):
    evaluators = [Evaluator(), Evaluator()]
    both = threading.Barrier(3)
    ended = []

    @labshell.function
    def Py_Other(number):
        both.wait()
        return evaluators[1 - int(number)]("1")

    def work(number):
        try:
            evaluators[number](f"Py_Other({number})")
        except Error as error:
            ended.append(error.message)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(2)]
    for thread in threads:
        thread.start()
    both.wait()
    threading.Timer(0.2, end).start()
    with pytest.raises(exception):
        evaluators[0]("1")
    for thread in threads:
        thread.join()
    assert len(ended) == 2 and all("Aborted" in message for message in ended)
