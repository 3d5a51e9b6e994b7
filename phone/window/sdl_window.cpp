#include "phone/window/phone_window.hpp"

#include "phone/graphics/bitmap.hpp"
#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"
#include "phone/phone.hpp"
#include "phone/screen/device_frame.hpp"
#include "phone/screen/renderer.hpp"
#include "phone/window/legend.hpp"

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace phone {

namespace {

using graphics::Bitmap;
using graphics::Point;
using graphics::Rect;
using graphics::Size;

constexpr double kMargin = 24;           // points around the phone
constexpr double kWheelPoints = 48;      // of content for each notch of the wheel
constexpr int kFrameMilliseconds = 16;   // while something moves
constexpr int kIdleMilliseconds = 40;    // while nothing does: timers are still met in time to be seen
constexpr double kDesktopBars = 80;      // pixels that the desktop's bars and a title take, about
constexpr double kDotsPerScale = 96;     // dots per inch of a display at scale 1

constexpr char kHome[] = "com.apple.springboard";
constexpr char kSomeApplication[] = "com.apple.mobilenotes";

constexpr std::size_t kColumnsUnder = 3;   // of the legend under a phone that lies on its side

Legend legendIn(std::size_t columns)
{
    return { {
                 { "mouse", "the finger" },
                 { "wheel", "scrolls the strip" },
                 { "L", "side button: lock" },
                 { "U", "swipe up: unlock" },
                 { "P", "enter the passcode" },
                 { "esc", "cancel the passcode" },
                 { "R", "rotate" },
                 { "M", "music on and off" },
                 { "A", "open an app, leave it" },
                 { "O", "gesture: overlay strip" },
                 { "H", "gesture: hide the strip" },
                 { "Q", "quit" },
             },
        columns };
}

struct WindowDeleter {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
struct RendererDeleter {
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
};
struct TextureDeleter {
    void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};

}

struct PhoneWindow::Parts {
    ~Parts()
    {
        texture.reset();
        output.reset();
        window.reset();
        if (isSdlUp)
            SDL_Quit();
    }

    // Where things are, in points, for the present orientation: the legend stands beside an upright phone,
    // and under one that lies on its side.
    bool isLandscape() const { return orientation >= 3; }
    Size contentSize() const
    {
        Size const device = frame->size();
        Size const keys = legend.size();
        if (isLandscape())
            return { std::max(device.width, keys.width) + 2 * kMargin,
                device.height + keys.height + 3 * kMargin };
        return { device.width + keys.width + 3 * kMargin,
            std::max(device.height, keys.height) + 2 * kMargin };
    }
    Point deviceOrigin() const
    {
        Size const content = contentSize();
        if (isLandscape())
            return { (content.width - frame->size().width) / 2, kMargin };
        return { kMargin, (content.height - frame->size().height) / 2 };
    }
    Point legendOrigin() const
    {
        Size const content = contentSize();
        Size const keys = legend.size();
        if (isLandscape())
            return { (content.width - keys.width) / 2, content.height - kMargin - keys.height };
        return { content.width - kMargin - keys.width, (content.height - keys.height) / 2 };
    }
    Rect screenRect() const { return frame->screen().offset(deviceOrigin().x, deviceOrigin().y); }

    // Window coordinates are logical pixels; where the desktop scales, the output has more.
    CGPoint toPhone(int x, int y) const
    {
        int width = 1;
        int height = 1;
        SDL_GetWindowSize(window.get(), &width, &height);
        double const pointsPerUnit = contentSize().width / std::max(1, width);
        Rect const screen = screenRect();
        return { x * pointsPerUnit - screen.x, y * pointsPerUnit - screen.y };
    }
    bool isOnScreen(CGPoint point) const
    {
        Rect const screen = screenRect();
        return point.x >= 0 && point.y >= 0 && point.x < screen.width && point.y < screen.height;
    }

    // Window units per point: as large as the display's own scale asks for, but no larger than fits on it.
    double unitsPerPoint() const
    {
        int const display = std::max(0, window ? SDL_GetWindowDisplayIndex(window.get()) : 0);
        SDL_Rect usable {};
        if (SDL_GetDisplayUsableBounds(display, &usable) != 0 || usable.h <= 0)
            return 1;
        float dots = 0;
        bool const knowsDots = SDL_GetDisplayDPI(display, nullptr, &dots, nullptr) == 0 && dots > 0;
        double const wanted = knowsDots ? std::max(1.0, std::round(dots / kDotsPerScale)) : 1;
        Size const content = contentSize();
        double const fitting = std::min((usable.h - kDesktopBars) / content.height, usable.w / content.width);
        return std::clamp(std::min(wanted, fitting), 0.25, 3.0);
    }

    void layOut()
    {
        frame.emplace(portrait, orientation);
        legend = legendIn(isLandscape() ? kColumnsUnder : 1);
        double const scale = unitsPerPoint();
        Size const content = contentSize();
        int const width = static_cast<int>(std::lround(content.width * scale));
        int const height = static_cast<int>(std::lround(content.height * scale));
        if (!window) {
            window.reset(SDL_CreateWindow("Corvel", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width,
                height, SDL_WINDOW_ALLOW_HIGHDPI));
        } else {
            SDL_SetWindowSize(window.get(), width, height);
            SDL_SetWindowPosition(window.get(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
        }
        chrome = {};
    }

    // A back buffer of the output's size, with what never changes already drawn on `chrome`.
    bool prepareBuffers()
    {
        int width = 0;
        int height = 0;
        if (SDL_GetRendererOutputSize(output.get(), &width, &height) != 0 || width <= 0 || height <= 0)
            return false;
        if (chrome && chrome.pixelWidth() == width && chrome.pixelHeight() == height)
            return true;
        double const scale = width / contentSize().width;
        chrome = Bitmap::withPixels(width, height, scale);
        back = Bitmap::withPixels(width, height, scale);
        screen = Bitmap::withPoints(screenRect().size(), scale);
        texture.reset(SDL_CreateTexture(
            output.get(), SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING, width, height));
        if (!chrome || !back || !screen || !texture)
            return false;
        auto const context = chrome.newContext();
        graphics::addRect(context.get(), chrome.bounds());
        graphics::fill(context.get(), graphics::Color::hex(0x26262b));
        legend.draw(context.get(), legendOrigin());
        cairo_translate(context.get(), deviceOrigin().x, deviceOrigin().y);
        frame->drawBody(context.get());
        return true;
    }

    void draw()
    {
        if (!prepareBuffers())
            return;
        renderer.drawScreen(screen);
        {
            auto const context = back.newContext();
            graphics::drawBitmap(context.get(), chrome, back.bounds());
            cairo_translate(context.get(), deviceOrigin().x, deviceOrigin().y);
            frame->drawScreen(context.get(), screen);
        }
        SDL_UpdateTexture(texture.get(), nullptr, back.pixels(), static_cast<int>(back.stride()));
        SDL_RenderCopy(output.get(), texture.get(), nullptr, nullptr);
        SDL_RenderPresent(output.get());
    }

    // Answers false when the window is to close.
    bool handle(SDL_Event const& event)
    {
        auto& device = phone();
        switch (event.type) {
        case SDL_QUIT: return false;
        case SDL_WINDOWEVENT: needsDraw = true; break;
        case SDL_RENDER_TARGETS_RESET:
        case SDL_RENDER_DEVICE_RESET:
            chrome = {};
            needsDraw = true;
            break;
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.button != SDL_BUTTON_LEFT)
                break;
            if (CGPoint const point = toPhone(event.button.x, event.button.y); isOnScreen(point)) {
                isFingerDown = true;
                SDL_CaptureMouse(SDL_TRUE);
                device.touchDown(point);
            }
            break;
        case SDL_MOUSEMOTION:
            if (isFingerDown)
                device.touchMove(toPhone(event.motion.x, event.motion.y));
            break;
        case SDL_MOUSEBUTTONUP:
            if (event.button.button == SDL_BUTTON_LEFT && isFingerDown) {
                isFingerDown = false;
                SDL_CaptureMouse(SDL_FALSE);
                device.touchUp(toPhone(event.button.x, event.button.y));
            }
            break;
        case SDL_MOUSEWHEEL: {
            int x = 0;
            int y = 0;
            SDL_GetMouseState(&x, &y);
            double const flip = event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -1 : 1;
            // Turned towards the user: further down, or to the right.
            device.scrollWheel(toPhone(x, y),
                { flip * double(event.wheel.preciseX) * kWheelPoints,
                    -flip * double(event.wheel.preciseY) * kWheelPoints });
            break;
        }
        case SDL_KEYDOWN:
            if (!event.key.repeat)
                return pressed(event.key.keysym.sym);
            break;
        default: break;
        }
        return true;
    }

    bool pressed(SDL_Keycode key)
    {
        auto& device = phone();
        switch (key) {
        case SDLK_q: return false;
        case SDLK_l: device.lock(); break;
        case SDLK_u: device.requestUnlock(); break;
        case SDLK_p:
            if (device.isPasscodeShown() && device.options().passcode)
                static_cast<void>(device.enterPasscode(*device.options().passcode));
            break;
        case SDLK_ESCAPE:
            if (device.isPasscodeShown())
                static_cast<void>(device.cancelPasscode());
            break;
        case SDLK_r: rotate(); break;
        case SDLK_m: device.setMusicPlaying(!device.isMusicPlaying()); break;
        case SDLK_a:
            static_cast<void>(
                device.launch(device.frontMostApplication() == kHome ? kSomeApplication : kHome));
            break;
        case SDLK_o: static_cast<void>(device.activate("com.orvane.corvelNONLS")); break;
        case SDLK_h: static_cast<void>(device.activate("com.orvane.corvelLS")); break;
        default: break;
        }
        return true;
    }

    // A quarter to the left each time.
    void rotate()
    {
        auto& device = phone();
        if (isFingerDown) {
            isFingerDown = false;
            device.touchCancel();
        }
        constexpr int kNext[] { 1, 3, 4, 2, 1 };   // by the present orientation
        device.setOrientation(kNext[device.orientation()]);
    }

    Size portrait;
    int orientation { 1 };
    bool isSdlUp { false };
    bool isFingerDown { false };
    bool needsDraw { true };
    bool wantsRestart { false };
    std::uint64_t refreshed { 0 };   // what refresh() drew last
    std::optional<DeviceFrame> frame;
    Legend legend;
    std::unique_ptr<SDL_Window, WindowDeleter> window;
    std::unique_ptr<SDL_Renderer, RendererDeleter> output;
    std::unique_ptr<SDL_Texture, TextureDeleter> texture;
    Bitmap chrome;   // everything but the screen
    Bitmap back;
    Bitmap screen;
    Renderer renderer;
};

PhoneWindow::PhoneWindow() = default;
PhoneWindow::~PhoneWindow() = default;

Status PhoneWindow::open(Size portrait)
{
    // SDL would otherwise fall back on a screen that nobody sees, or take over the console.
    auto const isSet = [](char const* name) {
        char const* const value = std::getenv(name);
        return value && *value;
    };
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("SDL_VIDEODRIVER"))
        return Error { "there is no display here for a window" };
    if (!isSet("SDL_VIDEODRIVER"))
        SDL_SetHint(SDL_HINT_VIDEODRIVER, isSet("DISPLAY") ? "x11,wayland" : "wayland");
    auto parts = std::make_unique<Parts>();
    parts->portrait = portrait;
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (SDL_Init(SDL_INIT_VIDEO) != 0)
        return Error { "the display for a window does not answer" };
    parts->isSdlUp = true;
    parts->layOut();
    if (!parts->window)
        return Error { std::string("no window opens: ") + SDL_GetError() };
    parts->output.reset(SDL_CreateRenderer(parts->window.get(), -1, 0));
    if (!parts->output)
        parts->output.reset(SDL_CreateRenderer(parts->window.get(), -1, SDL_RENDERER_SOFTWARE));
    if (!parts->output)
        return Error { std::string("nothing can be drawn in a window: ") + SDL_GetError() };
    m_parts = std::move(parts);
    return {};
}

PhoneWindow::End PhoneWindow::run()
{
    using Time = std::chrono::steady_clock;
    if (!m_parts)
        return End::closed;
    Parts& parts = *m_parts;
    auto& device = phone();
    device.setRestartHandler([&parts] { parts.wantsRestart = true; });
    auto last = Time::now();
    std::uint64_t drawn = 0;
    while (!parts.wantsRestart) {
        if (device.orientation() != parts.orientation) {
            parts.orientation = device.orientation();
            parts.layOut();
            parts.needsDraw = true;
        }
        if (parts.needsDraw || displayRevision() != drawn) {
            parts.draw();
            parts.needsDraw = false;
            drawn = displayRevision();
        }
        SDL_Event event;
        int const patience = device.clock().isAnimating() ? kFrameMilliseconds : kIdleMilliseconds;
        bool goesOn = true;
        if (SDL_WaitEventTimeout(&event, patience)) {
            do {
                goesOn = parts.handle(event) && goesOn;
            } while (SDL_PollEvent(&event));
        }
        for (auto const& work : m_work)
            goesOn = work() && goesOn;
        if (!goesOn)
            return End::closed;
        auto const now = Time::now();
        device.advance(m_movesClock ? std::chrono::duration<double>(now - last).count() : 0);
        last = now;
    }
    return End::restart;
}

void PhoneWindow::onEachTurn(std::function<bool()> work) { m_work.push_back(std::move(work)); }

void PhoneWindow::refresh()
{
    if (!m_parts || displayRevision() == m_parts->refreshed)
        return;
    m_parts->draw();
    m_parts->refreshed = displayRevision();
}

void PhoneWindow::close() { m_parts.reset(); }

}
