#include "phone/springboard/music.hpp"

#include "phone/springboard/adjunct_list.hpp"
#include "phone/springboard/media_card.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/ui_screen.hpp"

namespace phone {

void setMusicPlaying(bool isPlaying, bool animated)
{
    auto& state = springBoard();
    if (state.isMusicPlaying == isPlaying)
        return;
    state.isMusicPlaying = isPlaying;
    if (isPlaying) {
        auto const layout = lockScreenLayout(toGraphics(screenBounds().size), bootOptions().ios);
        auto const card = makeMediaCard(layout.cardRadius);
        auto const item = CSAdjunctListItem::make("com.apple.springboard.nowplaying"_ns, card);
        state.mediaItem = objc::retain(objc::handle(item.get()));
        sendHookable<"_insertItem:animated:">(state.adjunctController, state.mediaItem, BOOL(animated));
        return;
    }
    objc::ref<objc::handle> const item = std::exchange(state.mediaItem, nullptr);
    sendHookable<"_removeItem:animated:">(state.adjunctController, item, BOOL(animated));
}

}
