// A phone boots once a process, so what is measured on one runs in a child that tells its seconds back.
#pragma once

#include <functional>

// Runs the body in a process forked from this one and answers what it answered. A negative number: it failed.
double inChild(std::function<double()> const& body);
