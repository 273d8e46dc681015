#include "platform/qt/QtDesktop.h"

#include <fontconfig/fontconfig.h>
#include <unistd.h>
#include <QApplication>
#include <QFileInfo>
#include <QPixmapCache>
#include <QStyleFactory>
#include <cstdio>
#include <thread>

#include "platform/qt/FormWindow.h"
#include "platform/qt/Look.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtHelp.h"
#include "platform/qt/QtLocale.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtPictureFiles.h"
#include "platform/qt/QtScreen.h"

namespace platform {

namespace {

const char* programName = "";

// Installed while the display is opened, and ends the process in one line: without a display, Qt would end it
// with abort(), a core dump and a page of advice.
void ReportDisplayFailure(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg) return;
    const QByteArray display = qEnvironmentVariableIsSet("QT_QPA_PLATFORM") ? qgetenv("QT_QPA_PLATFORM")
                               : qEnvironmentVariableIsSet("DISPLAY")       ? qgetenv("DISPLAY")
                                                                            : qgetenv("WAYLAND_DISPLAY");
    std::fprintf(stderr, "%s: can't open the display \"%s\"\n", programName, display.constData());
    _exit(1);
}

void RequireDisplay() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(variable)) return;
    throw RuntimeError(ErrorNumber::AutomationError,
                       "there is no display to open the dialog on (DISPLAY and WAYLAND_DISPLAY are not set)");
}

// The program looks the same on every desktop, so that no theme needs to be found and loaded.
void PrepareApplication() {
    QApplication::setDesktopSettingsAware(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
}

class Desktop : public QtDesktop {
  public:
    Desktop(char* program, const Application& application, DatabaseEngine& engine)
        : arguments_{program, nullptr},
          application_(argumentCount_, arguments_),
          help_(application, engine),
          boxes_(application, help_),
          waits_(application),
          toolkit_(help_, loop_.Input()),
          pictures_(application.layers) {
        const QString name = QFileInfo(QString::fromLocal8Bit(program)).fileName();
        QApplication::setApplicationName(name);
        QApplication::setDesktopFileName(name);
        QApplication::setPalette(forms::LightPalette());
        QApplication::setFont(forms::DialogFont());
        // The style would cache up to 10 MiB of pictures of the boxes' buttons, and never use them again.
        QPixmapCache::setCacheLimit(0);
    }

    EventLoop& Loop() override { return loop_; }
    MessageBoxes& Boxes() override { return boxes_; }
    WaitBoxes& Waits() override { return waits_; }
    Screen& TheScreen() override { return screen_; }
    const LocaleTexts& Locale() const override { return locale_; }
    forms::Toolkit& Toolkit() override { return toolkit_; }
    const PictureFiles& Pictures() const override { return pictures_; }

  private:
    // Finds the machine's fonts while the toolkit starts. It takes as long, and the first text needs them.
    std::jthread fonts_{[] { FcInit(); }};
    // Qt gets only the program's name: the name of an exchange might look like one of Qt's options.
    int argumentCount_ = 1;
    char* arguments_[2];
    QApplication application_;
    QtEventLoop loop_;
    QtHelp help_;
    QtMessageBoxes boxes_;
    QtWaitBoxes waits_;
    QtScreen screen_;
    QtLocale locale_;
    forms::QtToolkit toolkit_;
    QtPictureFiles pictures_;
};

}  // namespace

std::unique_ptr<QtDesktop> OpenDesktop(int& argc, char** argv, const Application& application,
                                       DatabaseEngine& engine) {
    RequireDisplay();
    programName = argc > 0 ? argv[0] : "";
    PrepareApplication();
    const QtMessageHandler previous = qInstallMessageHandler(ReportDisplayFailure);
    auto desktop = std::make_unique<Desktop>(argv[0], application, engine);
    qInstallMessageHandler(previous);
    return desktop;
}

}  // namespace platform
