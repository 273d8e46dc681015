// Starts the add-in on its platform; the only file that knows both.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "exchange/dlgAddin.h"
#include "platform/automation/NoAutomation.h"
#include "platform/automation/dbus/BusAutomation.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/desktop/IniSettings.h"
#include "platform/desktop/Installation.h"
#include "platform/qt/QtDesktop.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/ProgramFile.h"
#include "shell/AddInMain.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

namespace {

using namespace platform;
using horalink::startedByAutomation;

Text CommandLine(int argc, char** argv) {
    std::string line;
    for (int i = 1; i < argc; ++i) line.append(i > 1 ? " " : "").append(argv[i]);
    return FromUtf8(line);
}

Application Identity(int argc, char** argv, const Settings& settings) {
    const auto program = ProgramFile();
    Application app;
    app.major = 13;
    app.minor = 0;
    app.revision = 1;
    app.path = PathText(program.parent_path());
    app.layers = FindInstallation(program, settings).layers;
    app.command = CommandLine(argc, argv);
    app.startMode = app.command == u"-Embedding" ? startedByAutomation : std::int16_t{0};
    return app;
}

// Without a bus, a stand-alone run can't create its host.
std::unique_ptr<Automation> Connect(QtDesktop& desktop, const Application& app) {
    try {
        return ConnectToSessionBus(desktop.Loop(), desktop.Waits(), app.waits);
    } catch (const RuntimeError& error) {
        if (app.startMode == startedByAutomation) throw;
        std::fprintf(stderr, "horalink: can't reach the session bus: %s\n", error.what());
        return std::make_unique<NoAutomation>(desktop.Loop(), desktop.Waits(), app.waits);
    }
}

// Serves the class until the last object ends the process.
void Serve(horalink::AddInMain& main, Automation& automation, EventLoop& loop) {
    horalink::ServerLife life(automation, loop, [&] { main.End(); });
    main.Retire = [&] { life.Retire(); };
    life.Serve(horalink::cOLELayer::className, [&] { return horalink::cOLELayer::Create(main); });
    loop.Run();
}

// Runs until the dialog closes, if there is one.
void RunDialog(horalink::AddInMain& main, EventLoop& loop) {
    forms::Form& window = main.Dialog().Window();
    window.Unloaded = [&] { loop.Quit(); };
    if (window.IsLoaded()) loop.Run();
}

void Run(int argc, char** argv) {
    const IniSettings settings(SettingsFiles());
    Application app = Identity(argc, argv, settings);
    int qtArguments = 1;
    const auto engine = MakeSqliteEngine(app.layers);
    const auto desktop = OpenDesktop(qtArguments, argv, app, *engine);
    const auto automation = Connect(*desktop, app);
    const SystemClock clock;
    // A server that ends before it serves must report a failure, or whoever started it would go on waiting.
    int status = EXIT_FAILURE;
    const horalink::Services services{
        app,
        clock,
        desktop->Locale(),
        settings,
        *engine,
        *automation,
        desktop->Loop(),
        desktop->Boxes(),
        desktop->TheScreen(),
        desktop->Toolkit(),
        desktop->Pictures(),
        [&] {
            automation->Leave();
            std::_Exit(status);
        },
    };
    horalink::AddInMain main(services);
    main.Main();
    status = EXIT_SUCCESS;
    if (main.Data().IsStandalone)
        RunDialog(main, desktop->Loop());
    else
        Serve(main, *automation, desktop->Loop());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Run(argc, argv);
        return EXIT_SUCCESS;
    } catch (const RuntimeError& error) {
        std::fprintf(stderr, "horalink: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
