"""The documents and the stub say what is there."""

import ast
import doctest
import inspect
import pathlib
import re

import labshell

ROOT = pathlib.Path(__file__).parents[2]


def test_the_examples_of_the_page_run_as_they_stand(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    page = (ROOT / "Docs/Python.md").read_text()
    blocks = re.findall(r"^```pycon\n(.*?)^```", page, re.DOTALL | re.MULTILINE)
    test = doctest.DocTestParser().get_doctest("\n".join(blocks), {}, "Python.md", None, 0)
    runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
    report = []
    runner.run(test, out=report.append)
    assert len(test.examples) > 15 and runner.failures == 0, "".join(report)


def test_the_tests_of_the_page_pass(tmp_path, in_process):
    page = (ROOT / "Docs/Python.md").read_text()
    (tmp_path / "test_page.py").write_text(re.search(r"^```python\n(.*?)^```", page, re.DOTALL | re.MULTILINE)[1])
    status, output, errors = in_process(f"import pytest; raise SystemExit(pytest.main(['-q', '-p', 'no:cacheprovider', {str(tmp_path)!r}]))")
    assert status == 0 and re.search(r"^\d+ passed", output, re.MULTILINE), output + errors


def test_the_version_is_that_of_the_project():
    project = (ROOT / "CMakeLists.txt").read_text()
    assert labshell.__version__ == re.search(r"^project\(\w+ VERSION ([\d.]+)", project, re.MULTILINE)[1]


def members(node):
    return {child.name if isinstance(child, ast.FunctionDef) else child.target.id: child for child in node.body
            if isinstance(child, ast.FunctionDef) or (isinstance(child, ast.AnnAssign) and isinstance(child.target, ast.Name))}


def parameters(node):
    arguments = node.args
    return [a.arg for a in arguments.posonlyargs + arguments.args], [a.arg for a in arguments.kwonlyargs]


def test_the_stub_has_the_names_and_parameters_of_the_package():
    stub = ast.parse((ROOT / "Python/labshell/__init__.pyi").read_text())
    stubbed = {node.name: node for node in stub.body if isinstance(node, (ast.ClassDef, ast.FunctionDef))}
    assert sorted(stubbed) == sorted(labshell.__all__)
    for name, node in stubbed.items():
        thing = getattr(labshell, name)
        told = {name: node} if isinstance(node, ast.FunctionDef) else members(node)
        public = {n for n in vars(thing) if not n.startswith("_")} if inspect.isclass(thing) else set()
        assert public <= set(told), name
        for member, definition in told.items():
            real = thing if isinstance(node, ast.FunctionDef) else getattr(thing, member, None)
            if isinstance(definition, ast.FunctionDef) and inspect.isfunction(real):
                signature = inspect.signature(real).parameters.values()
                keywords = [p.name for p in signature if p.kind == p.KEYWORD_ONLY]
                others = [p.name for p in signature if p.kind in (p.POSITIONAL_ONLY, p.POSITIONAL_OR_KEYWORD)]
                assert parameters(definition) == (others, keywords), f"{name}.{member}"
