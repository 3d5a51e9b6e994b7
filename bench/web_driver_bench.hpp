// What WebDriver's commands cost a client, over a socket, with the phone in its own process.
#pragma once

#include "phone/kernel/boot_options.hpp"

#include <benchmark/benchmark.h>

#include <vector>

// One for each command, as seconds a call, and one from the server's start to its first answer.
std::vector<benchmark::internal::Benchmark*> registerWebDriverBenchmarks(phone::BootOptions const& boot);
