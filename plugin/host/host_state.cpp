#include "plugin/host/host_state.hpp"

HostState& hostState()
{
    // Never destroyed: it lives as long as SpringBoard does.
    static HostState& state = *new HostState;
    return state;
}
