#include "platform/qt/QtHelp.h"

#include "platform/qt/HelpWindow.h"
#include "platform/qt/QtText.h"

namespace platform {

namespace {

// The topic shown instead of a missing one.
constexpr std::int32_t noTopic = 0;

HelpTopic TopicOrReason(DatabaseEngine& engine, TextView file, std::int32_t id) {
    try {
        for (const std::int32_t found : {id, noTopic})
            if (auto topic = FindTopic(engine, file, found)) return *std::move(topic);
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "help topic " + std::to_string(id));
    } catch (const RuntimeError& error) {
        return {{}, FromQt(ToQt(error.Description()).toHtmlEscaped())};
    }
}

}  // namespace

void QtHelp::Show(QWidget& beside, std::int32_t topic, TextView file) const {
    (new HelpWindow(TopicOrReason(engine_, file, topic), beside))->Present();
}

}  // namespace platform
