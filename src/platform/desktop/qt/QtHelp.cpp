#include "platform/desktop/qt/QtHelp.h"

#include "platform/desktop/qt/HelpWindow.h"
#include "platform/desktop/qt/QtText.h"

namespace platform {

namespace {

HelpTopic Sentence(const QString& text) {
    return {{}, FromQt(text.toHtmlEscaped())};
}

HelpTopic TopicOrSentence(DatabaseEngine& engine, TextView file, std::int32_t id) {
    try {
        if (!file.empty())
            if (auto topic = FindTopic(engine, file, id)) return *std::move(topic);
        return Sentence(QStringLiteral("There is no help on this yet."));
    } catch (const RuntimeError& error) {
        return Sentence(QStringLiteral("The help can't be shown: ") + ToQt(error.Description()));
    }
}

}  // namespace

void QtHelp::Show(QWidget& beside, std::int32_t topic, TextView file) const {
    (new HelpWindow(TopicOrSentence(engine_, file, topic), beside))->Present();
}

}  // namespace platform
