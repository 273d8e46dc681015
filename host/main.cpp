// The process: assembles the parts, with a window or as a service of the bus.
#include <QCoreApplication>
#include <QTranslator>
#include <cstdio>
#include <iterator>
#include <memory>

#include "host/AddIn.h"
#include "host/ExchangeObject.h"
#include "host/HostObject.h"
#include "host/MainWindow.h"
#include "host/Options.h"
#include "host/SimulatedExchange.h"
#include "host/TimedateExchange.h"
#include "platform/automation/dbus/BusAutomation.h"
#include "platform/automation/dbus/SessionBusNames.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/desktop/IniSettings.h"
#include "platform/desktop/Installation.h"
#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtText.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/ProgramFile.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

namespace {

using platform::Text, platform::TextView;

// How long a service waits for its first client before it ends.
constexpr platform::Milliseconds unusedLimit{60000};
// Where the host stores its own values.
const Text storeSection = u"Switchdesk", backgroundKey = u"BACKGROUND";

constexpr TextView familySection = u"VELMORA32";

// Loads the host's texts in the first of the languages that it has. The source is in English.
void LoadTexts(QTranslator& texts, const std::vector<Text>& languages) {
    for (const Text& language : languages)
        if (language == u"en" || texts.load(QStringLiteral(":/texts/") + platform::ToQt(language))) break;
    QCoreApplication::installTranslator(&texts);
}

// Sets the texts that boxes of the platform show.
void PutTexts(platform::Application& application) {
    application.waits.busyText =
        platform::FromQt(QCoreApplication::translate("main", "The clock add-in is busy. Keep waiting?"));
    application.waits.pendingText = platform::FromQt(
        QCoreApplication::translate("main", "The clock add-in hasn't answered yet. Keep waiting?"));
    application.buttons.keepWaiting = platform::FromQt(QCoreApplication::translate("main", "Keep waiting"));
    application.buttons.giveUp = platform::FromQt(QCoreApplication::translate("main", "Give up"));
}

// Gives the simulated exchanges different clocks, as real ones have.
void AddExchanges(ExchangeDesk& desk, const Options& options, platform::EventLoop& loop,
                  const platform::Clock& clock) {
    static constexpr double habits[] = {7, -11, 3};
    std::size_t next = 0;
    for (const ExchangeEntry& entry : options.exchanges) {
        const double minutesAhead = options.minutesAhead.value_or(habits[next++ % std::size(habits)]);
        if (entry.isSimulated)
            desk.Add(entry.name, std::make_unique<SimulatedExchange>(loop, clock, minutesAhead));
        else
            desk.Add(entry.name, std::make_unique<TimedateExchange>(loop, entry.address, entry.maySet));
    }
}

class Host {
  public:
    // `directory` is the one that the program lies in.
    Host(const Options& options, platform::QtDesktop& desktop, platform::Automation& automation,
         platform::DatabaseEngine& engine, Text directory);

    void RunWithWindow();
    void RunAsService();

  private:
    void Serve();
    void ServeBesideWindow();
    std::int16_t ChosenBackground() const;
    void ChooseBackground(std::int16_t set);
    void Leave();

    const Options& options_;
    platform::EventLoop& loop_;
    platform::Automation& automation_;
    platform::SystemClock clock_;
    CallLog log_;
    Misbehaviour misbehaviour_;
    Observation observation_;
    Store store_;
    Family family_;
    ExchangeDesk desk_;
    std::unique_ptr<MainWindow> window_;
    std::unique_ptr<AddIn> addIn_;
    std::shared_ptr<HostObject> hostObject_;
    platform::HandleRef start_, unused_;
};

Host::Host(const Options& options, platform::QtDesktop& desktop, platform::Automation& automation,
           platform::DatabaseEngine& engine, Text directory)
    : options_(options),
      loop_(desktop.Loop()),
      automation_(automation),
      misbehaviour_(options.misbehaviour),
      observation_{log_, misbehaviour_},
      store_(options.store),
      family_(engine, std::move(directory)),
      desk_(loop_, observation_) {
    if (options.log) log_.AddSink(FileSink(*options.log));
    if (options.verbose) log_.AddSink(StandardOutputSink());
    AddExchanges(desk_, options, loop_, clock_);
}

void Host::Serve() {
    automation_.ServeClass(options_.ExchangeClass(), [this] {
        log_.Note("an exchange object is created");
        return std::make_shared<ExchangeObject>(observation_, desk_);
    });
}

// Serves the exchange object's class beside the window. If another process owns its name, tells the operator
// and goes on: only add-ins that were started alone create that object.
void Host::ServeBesideWindow() {
    try {
        Serve();
    } catch (const platform::RuntimeError& error) {
        log_.Note("the exchange object's class can't be served: " + std::string(error.what()));
        window_->ShowMessage(platform::FromQt(QCoreApplication::translate(
            "main", "Another host serves stand-alone runs; this one serves its own add-in only.")));
    }
}

void Host::RunWithWindow() {
    const auto open = [this](const Text& exchange) { addIn_->Open(exchange, hostObject_); };
    window_ = std::make_unique<MainWindow>(
        desk_, family_,
        MainWindow::Actions{open, [this] { addIn_->Close(); }, [this] { Leave(); },
                            [this](std::int16_t set) { ChooseBackground(set); }});
    addIn_ = std::make_unique<AddIn>(automation_, loop_, *window_, log_);
    addIn_->SetBackground(ChosenBackground());
    window_->OfferBackgrounds(ChosenBackground());
    const auto unloaded = [this](std::int16_t id) { addIn_->ChildUnloaded(id); };
    const auto exchange = std::make_shared<ExchangeObject>(observation_, desk_);
    hostObject_ =
        std::make_shared<HostObject>(observation_, HostObject::Parts{*window_, store_, exchange, unloaded});
    desk_.ReportTo({[this](const Text& name, const Text& text) { window_->ShowMessageOf(name, text); },
                    [this] { window_->ShowExchanges(); }});
    window_->show();
    ServeBesideWindow();
    if (options_.open)
        start_ = loop_.After(platform::Milliseconds(0), [this, open] { open(*options_.open); });
    loop_.Run();
}

// The default set if the stored value isn't a number.
std::int16_t Host::ChosenBackground() const {
    platform::ErrorState noNumber;
    std::int16_t set = 0;
    platform::Skip(noNumber, "the stored background", [&] {
        set = platform::Value(store_.Get(storeSection, backgroundKey).value_or(Text())).ToInteger();
    });
    return set;
}

void Host::ChooseBackground(std::int16_t set) {
    addIn_->SetBackground(set);
    try {
        store_.Set(storeSection, backgroundKey, platform::DecimalText(set));
    } catch (const platform::RuntimeError& error) {
        window_->ShowMessage(error.Description());
    }
}

// Serves the add-in until it has left, because it stores its position at the end.
void Host::Leave() {
    addIn_->Close();
    addIn_->WhenLeft([this] { loop_.Quit(); });
}

void Host::RunAsService() {
    automation_.WhenInUse([this](bool inUse) {
        unused_ = nullptr;
        if (!inUse) loop_.Quit();
    });
    unused_ = loop_.After(unusedLimit, [this] { loop_.Quit(); });
    Serve();
    loop_.Run();
}

QStringList Arguments(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments.push_back(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

int Run(int argc, char** argv) {
    const std::filesystem::path program = platform::ProgramFile();
    const platform::IniSettings settings(platform::SettingsFiles());
    const auto installation = platform::FindInstallation(program, settings);
    const Options options = ParseOptions(Arguments(argc, argv), platform::ToUtf8(installation.market));
    if (options.help) return std::fputs(HelpText().c_str(), stdout), 0;
    platform::Application application;
    application.title = application.waits.busyTitle = application.waits.pendingTitle = u"Switchdesk";
    const auto engine = platform::MakeSqliteEngine(installation.layers);
    const auto desktop = platform::OpenDesktop(argc, argv, application, *engine);
    QTranslator texts;
    LoadTexts(texts,
              platform::WantedLanguages(settings.Get(familySection, installation.market, u"Language", u"")));
    PutTexts(application);
    const auto automation =
        platform::ConnectToSessionBus(desktop->Loop(), desktop->Waits(), application.waits);
    if (options.trace) platform::SetForStartedPrograms("HORALINK_TRACE", "1");
    Host host(options, *desktop, *automation, *engine, platform::PathText(program.parent_path()));
    options.service ? host.RunAsService() : host.RunWithWindow();
    automation->Leave();
    return 0;
}

}  // namespace

}  // namespace switchdesk

int main(int argc, char** argv) {
    try {
        return switchdesk::Run(argc, argv);
    } catch (const platform::RuntimeError& error) {
        std::fprintf(stderr, "switchdesk: %s\n", error.what());
        return 1;
    }
}
