#include "plugin/strip/strip_state.hpp"

StripState& stripState()
{
    // Never destroyed: it lives as long as SpringBoard does.
    static StripState& state = *new StripState;
    return state;
}
