// What nearly every source of the phone and of the tests reads, compiled once where the compiler is g++
// (corvel_precompile in CMakeLists.txt). Each source still names what it uses: ./corvel lint compiles without it.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <nlohmann/json.hpp>

#include "objc/block.hpp"
#include "objc/define.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"
