// The display as somebody before it has it: sees windows of programs come up and get painted, clicks and
// types.
#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>

namespace bench {

class Display {
  public:
    using Clock = std::chrono::steady_clock;

    // Connects to the display of the environment. Raises std::runtime_error where there is none.
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    int Descriptor() const;
    // Takes in what has happened so far, without waiting.
    void Look();
    // Waits until a window of a program that came up since the last call has been painted. Raises
    // std::runtime_error after 20 seconds.
    xcb_window_t WaitForPaint();
    // The same, if that has been seen already.
    std::optional<xcb_window_t> TakePainted();
    Clock::time_point PaintedAt(xcb_window_t window) const;

    bool IsShown(xcb_window_t window) const;
    // How often something was drawn on a window since it came up.
    long Paints(xcb_window_t window) const;

    // Points to a place inside a window, in pixels.
    void Point(xcb_window_t window, std::int16_t x, std::int16_t y);
    // Presses and lets go of the left button; returns the time between both.
    Clock::time_point Click();
    // Presses and lets go of the Enter key.
    void PressEnter();

  private:
    struct Window {
        bool isShown = false, wasTaken = false;
        long paints = 0;
        std::optional<Clock::time_point> paintedAt;
    };

    void FindManager();
    void Watch(const xcb_create_notify_event_t& created);
    void Handle(const xcb_generic_event_t& event);
    void SetShown(xcb_window_t window, bool shown);
    void CountPaint(const xcb_damage_notify_event_t& damage);
    void Send(std::uint8_t type, std::uint8_t detail);

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    std::uint32_t clientMask_ = 0, manager_ = 0;
    int damageEvent_ = 0;
    std::map<xcb_window_t, Window> windows_;
};

}  // namespace bench
