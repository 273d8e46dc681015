// The display as its user sees it: watches programs' windows appear and get painted, clicks and types. There
// is no window manager.
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

    // Connects to the display that the environment names. Raises std::runtime_error if it can't.
    Display();
    ~Display() { xcb_disconnect(connection_); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    int Descriptor() const { return xcb_get_file_descriptor(connection_); }
    // Handles the events so far, without waiting.
    void Look();
    // Waits for the first paint of a window not yet returned. Raises std::runtime_error after 20 seconds.
    xcb_window_t WaitForPaint();
    // The same without waiting.
    std::optional<xcb_window_t> TakePainted();
    Clock::time_point PaintedAt(xcb_window_t window) const { return *windows_.at(window).paintedAt; }
    bool IsShown(xcb_window_t window) const {
        return windows_.contains(window) && windows_.at(window).isShown;
    }

    bool HasFocus(xcb_window_t window) const;

    // Clicks a place inside a window, in pixels; returns the time between press and release.
    Clock::time_point Click(xcb_window_t window, std::int16_t x, std::int16_t y);
    // Presses and releases the Enter key.
    void PressEnter();

  private:
    struct Window {
        bool isShown = false, wasTaken = false;
        std::optional<Clock::time_point> paintedAt;
    };

    void Watch(xcb_window_t window);
    void Handle(const xcb_generic_event_t& event);
    void SetShown(xcb_window_t window, bool shown);
    void NotePaint(const xcb_damage_notify_event_t& damage);
    void Send(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0);

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    int damageEvent_ = 0;
    std::map<xcb_window_t, Window> windows_;
};

}  // namespace bench
