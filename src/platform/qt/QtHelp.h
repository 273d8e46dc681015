// Help topics on the screen.
#pragma once

#include "platform/data/Database.h"
#include "platform/desktop/Application.h"

class QWidget;

namespace platform {

class QtHelp {
  public:
    QtHelp(const Application& application, DatabaseEngine& engine)
        : application_(application), engine_(engine) {}

    // Shows a topic of the application's help file, or of another one, beside a widget. Shows topic 0 instead
    // of a missing one, or the reason why the file can't be read.
    void Show(QWidget& beside, std::int32_t topic) const { Show(beside, topic, application_.helpFile); }
    void Show(QWidget& beside, std::int32_t topic, TextView file) const;

  private:
    const Application& application_;
    DatabaseEngine& engine_;
};

}  // namespace platform
