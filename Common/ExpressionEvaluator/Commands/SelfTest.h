#pragma once

class TestCommand;

/// The self-test that the plug-in registers: expressions, commands and the classes below them against their expected
/// results. Needs no instrument data and leaves everything as it was.
void RunExpressionEvaluatorTests(TestCommand& test);
