// The add-in's dialog, opened by a host and driven by clicks.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <thread>

#include "Display.h"
#include "Host.h"

namespace bench {

// A place inside the dialog, in pixels.
struct Spot {
    std::int16_t x, y;
};
inline constexpr Spot lookupButton{47, 269}, trackTimeBox{291, 224}, trackDateBox{291, 200};

class Dialog {
  public:
    // Returns once the dialog is painted.
    explicit Dialog(Host& host) : host_(host) {
        host_.Open();
        host_.SetVisible(true);
        window_ = NextWindow();
    }
    Display& Screen() { return display_; }
    xcb_window_t Window() const { return window_; }

    Display::Clock::time_point Click(Spot spot) { return ClickOn(window_, spot); }
    // The same on a window of another program.
    Display::Clock::time_point ClickOn(xcb_window_t window, Spot spot) {
        display_.Point(window, spot.x, spot.y);
        return display_.Click();
    }
    // Serves the host until another window is painted.
    xcb_window_t NextWindow() {
        std::optional<xcb_window_t> next;
        ServeUntil([&] { return (next = display_.TakePainted()).has_value(); });
        return *next;
    }
    // Closes a box by its default button, and returns once it has closed.
    void CloseBox(xcb_window_t box) {
        display_.PressEnter();
        WaitUntilClosed(box);
    }
    void WaitUntilClosed(xcb_window_t box) {
        ServeUntil([&] { return !display_.IsShown(box); });
    }
    // Shows or hides the dialog, and returns when it's done.
    void SetVisible(bool visible) {
        host_.SetVisible(visible);
        ServeUntil([&] { return display_.IsShown(window_) == visible; });
    }

    // Waits, then handles all messages and events that have arrived.
    void Rest(std::chrono::milliseconds time) {
        std::this_thread::sleep_for(time);
        while (host_.Serve()) continue;
        display_.Look();
    }

  private:
    void ServeUntil(const std::function<bool()>& condition) {
        const auto look = [&] {
            display_.Look();
            return condition();
        };
        host_.ServeUntil(look, display_.Descriptor());
    }

    Host& host_;
    Display display_;
    xcb_window_t window_;
};

}  // namespace bench
