// An action that waits behind the passcode. Shared by every strip; main thread only.
//
// Written by a tap or a menu entry on a locked device; read, and thereby cleared, by the lock screen's hooks, through the strip's
// actionState. The codes are not those of the single tap.
#pragma once

#include "platform/foundation.hpp"

enum class PendingAction : NSInteger {
    none = 0,
    msgWA = 1,   // 1, 2, 7, 8 open another application: they run as the lock screen goes away
    callWA = 2,
    msgSMS =
        3,   // 3 to 6 and 9 can be shown over the lock screen: they run there, and the unlock is not carried through
    sndEmail = 4,
    callPhone = 5,
    callFacetime = 6,
    msgTG = 7,
    callTG = 8,
    showMenu = 9,
};

struct PendingState {
    PendingAction pendingActionCode = PendingAction::none;
    BOOL stayAtLSFlag = false;   // the parked action is to run on the lock screen
};

PendingState& pendingState();

// Parks the action and asks for the unlock; an earlier one is forgotten. The stay flag is raised for those that run on the lock
// screen and left as it is for the others.
void park(PendingAction action);
