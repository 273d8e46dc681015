#include "platform/headless/Desktop.h"

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

class WaitBoxes::Box : public WaitBox {
  public:
    explicit Box(int& open) : open_(open) { ++open_; }
    ~Box() override { --open_; }

  private:
    int& open_;
};

std::unique_ptr<WaitBox> WaitBoxes::Open(TextView title, TextView text, std::function<void(bool)> answered) {
    opened.push_back({Text(title), Text(text), std::move(answered)});
    return std::make_unique<Box>(open_);
}

void WaitBoxes::Answer(bool giveUp) {
    const auto answered = std::exchange(opened.back().answered, nullptr);
    if (answered) answered(giveUp);
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
