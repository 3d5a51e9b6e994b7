// Music: while it plays, a media item stands in the lock screen's adjunct list. Main thread.
#pragma once

namespace phone {

void setMusicPlaying(bool isPlaying, bool animated);

}
