// The display as its user sees it: watches programs' windows appear and get painted, clicks and types.
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
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    int Descriptor() const;
    // Handles the events so far, without waiting.
    void Look();
    // Waits for the first paint of a window not yet returned. Raises std::runtime_error after 20 seconds.
    xcb_window_t WaitForPaint();
    // The same without waiting, for paints that Look has seen.
    std::optional<xcb_window_t> TakePainted();
    Clock::time_point PaintedAt(xcb_window_t window) const;

    bool IsShown(xcb_window_t window) const;
    // The number of paints of a window since it appeared.
    long Paints(xcb_window_t window) const;

    // Moves the pointer to a place inside a window, in pixels.
    void Point(xcb_window_t window, std::int16_t x, std::int16_t y);
    // Presses and releases the left button; returns the time between the two.
    Clock::time_point Click();
    // Presses and releases the Enter key.
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
