#include "Display.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto limit = 20s;
// Smaller windows are for a toolkit's internal use (selections, the input method).
constexpr int smallestWidth = 100;
constexpr std::uint8_t leftButton = 1, enterKey = 36;

template <class Type>
std::unique_ptr<Type, decltype(&std::free)> Own(Type* reply) {
    return {reply, std::free};
}

}  // namespace

Display::Display() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_)) throw std::runtime_error("can't open the display");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
    damageEvent_ = xcb_get_extension_data(connection_, &xcb_damage_id)->first_event;
    Own(xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
    xcb_flush(connection_);
}

void Display::Look() {
    while (const auto event = Own(xcb_poll_for_event(connection_))) Handle(*event);
}

std::optional<xcb_window_t> Display::TakePainted() {
    for (auto& [window, seen] : windows_)
        if (seen.paintedAt && !std::exchange(seen.wasTaken, true)) return window;
    return std::nullopt;
}

xcb_window_t Display::WaitForPaint() {
    for (const auto end = Clock::now() + limit; Clock::now() < end;) {
        Look();
        if (const auto window = TakePainted()) return *window;
        pollfd display{Descriptor(), POLLIN, 0};
        poll(&display, 1, 100);
    }
    throw std::runtime_error("no window has been painted");
}

void Display::Handle(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    if (const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(event);
        type == XCB_CREATE_NOTIFY && created.override_redirect == 0)  // no menu or tip
        Watch(created.window);
    else if (type == XCB_MAP_NOTIFY)
        SetShown(reinterpret_cast<const xcb_map_notify_event_t&>(event).window, true);
    else if (type == XCB_UNMAP_NOTIFY)
        SetShown(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window, false);
    else if (type == XCB_DESTROY_NOTIFY)
        windows_.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
    else if (type == damageEvent_ + XCB_DAMAGE_NOTIFY)
        NotePaint(reinterpret_cast<const xcb_damage_notify_event_t&>(event));
}

// From its creation, to miss no paint.
void Display::Watch(xcb_window_t window) {
    xcb_damage_create(connection_, xcb_generate_id(connection_), window,
                      XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    const auto state = Own(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    windows_[window].isShown = state && state->map_state == XCB_MAP_STATE_VIEWABLE;
}

void Display::SetShown(xcb_window_t window, bool shown) {
    if (const auto seen = windows_.find(window); seen != windows_.end()) seen->second.isShown = shown;
}

// Before a window is shown, only the display paints it.
void Display::NotePaint(const xcb_damage_notify_event_t& damage) {
    const auto found = windows_.find(damage.drawable);
    if (found == windows_.end() || !found->second.isShown || damage.geometry.width < smallestWidth) return;
    if (!found->second.paintedAt) found->second.paintedAt = Clock::now();
}

void Display::Send(std::uint8_t type, std::uint8_t detail, std::int16_t x, std::int16_t y) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, root_, x, y, 0);
    xcb_flush(connection_);
}

Display::Clock::time_point Display::Click(xcb_window_t window, std::int16_t x, std::int16_t y) {
    const auto place = Own(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, root_, x, y), nullptr));
    if (!place) throw std::runtime_error("the window has closed");
    Send(XCB_MOTION_NOTIFY, 0, place->dst_x, place->dst_y);
    Send(XCB_BUTTON_PRESS, leftButton);
    const auto now = Clock::now();
    Send(XCB_BUTTON_RELEASE, leftButton);
    return now;
}

bool Display::HasFocus(xcb_window_t window) const {
    const auto focus = Own(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return focus && focus->focus == window;
}

void Display::PressEnter() {
    Send(XCB_KEY_PRESS, enterKey);
    Send(XCB_KEY_RELEASE, enterKey);
}

}  // namespace bench
