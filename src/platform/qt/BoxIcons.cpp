#include "platform/qt/BoxIcons.h"

#include <array>
#include <string>

#include "platform/qt/Drawing.h"

namespace platform {

namespace {

constexpr std::string_view head =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32" viewBox="0 0 32 32">)";
constexpr std::string_view tail = "</svg>";

// In the order of BoxSign.
constexpr std::array<std::string_view, 5> shapes{
    "",
    R"(<circle cx="16" cy="16" r="15" fill="#C2382E"/>
       <path d="M10.5 10.5L21.5 21.5M21.5 10.5L10.5 21.5" stroke="#FFF" stroke-width="3.4" stroke-linecap="round"/>)",
    R"(<circle cx="16" cy="16" r="15" fill="#1F63B5"/>
       <path d="M11.4 12.4A4.7 4.7 0 1 1 17.9 16.7C16.6 17.2 16 17.9 16 19.4" fill="none" stroke="#FFF"
             stroke-width="3" stroke-linecap="round"/>
       <circle cx="16" cy="24.2" r="2" fill="#FFF"/>)",
    R"(<path d="M16 3L30 28H2Z" fill="#E8A317" stroke="#E8A317" stroke-width="3" stroke-linejoin="round"/>
       <path d="M16 11.5V19" stroke="#1E2126" stroke-width="3.2" stroke-linecap="round"/>
       <circle cx="16" cy="24" r="2" fill="#1E2126"/>)",
    R"(<circle cx="16" cy="16" r="15" fill="#1F63B5"/>
       <circle cx="16" cy="9" r="2.2" fill="#FFF"/>
       <path d="M16 14.8V23.4" stroke="#FFF" stroke-width="3.4" stroke-linecap="round"/>)",
};

}  // namespace

QPixmap SignPixmap(BoxSign sign, int side, qreal devicePixelRatio) {
    if (sign == BoxSign::None) return {};
    std::string svg(head);
    svg.append(shapes[static_cast<std::size_t>(sign)]).append(tail);
    forms::Drawing drawing;
    drawing.Take(std::make_shared<forms::Picture>(std::move(svg)));
    return drawing.At(QSize(side, side), devicePixelRatio);
}

}  // namespace platform
