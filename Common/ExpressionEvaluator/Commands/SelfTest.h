#pragma once

class TestCommand;

/// The self-test that the plug-in registers: expressions and commands against their expected results. Needs no
/// instrument data.
void RunExpressionEvaluatorTests(TestCommand& test);
