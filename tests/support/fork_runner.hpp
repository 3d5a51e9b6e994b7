// Defined by each test program that uses fork_runner.cpp: loads what its tests have in common, once, before they are forked.
// Must leave no thread running.
#pragma once

void warmUpTests();
