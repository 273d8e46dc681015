#include "platform/headless/Desktop.h"

#include <algorithm>
#include <utility>

#include "platform/runtime/ScopeExit.h"

namespace platform::headless {

std::int16_t Boxes::Show(const MessageBox& box) {
    shown.push_back(box);
    ++open;
    const ScopeExit closed([this] { --open; });
    if (whileOpen) whileOpen();
    return answer;
}

struct WaitBoxes::Box : WaitBox {
    std::shared_ptr<void> open = std::make_shared<char>();
};

std::unique_ptr<WaitBox> WaitBoxes::Open(TextView title, TextView text, std::function<void(bool)> answered) {
    auto box = std::make_unique<Box>();
    opened.push_back({Text(title), Text(text), std::move(answered), box->open});
    if (decide) Answer(decide());
    return box;
}

bool WaitBoxes::IsOpen() const {
    return std::any_of(opened.begin(), opened.end(), [](const Opened& each) { return each.IsOpen(); });
}

void WaitBoxes::Answer(bool giveUp) {
    const auto newest =
        std::find_if(opened.rbegin(), opened.rend(), [](const Opened& each) { return each.IsOpen(); });
    if (newest != opened.rend()) std::exchange(newest->answered, nullptr)(giveUp);
}

Text Settings::Get(TextView application, TextView section, TextView key, TextView fallback) const {
    const auto found = values.find(Text(application) + u"/" + Text(section) + u"/" + Text(key));
    return found == values.end() ? Text(fallback) : found->second;
}

Text PictureFiles::Dir(TextView path) const {
    return hasAll || files.contains(Text(path)) ? Text(path) : Text();
}

forms::PictureRef PictureFiles::LoadPicture(TextView path) const {
    const auto found = files.find(Text(path));
    if (found == files.end() && !hasAll) throw RuntimeError(ErrorNumber::FileNotFound);
    if (found != files.end() && found->second.empty()) throw RuntimeError(ErrorNumber::InvalidPicture);
    return std::make_shared<forms::Picture>(found == files.end() ? "" : found->second);
}

}  // namespace platform::headless
