#include "horalink-setup/Commands.h"

#include <unistd.h>

#include <algorithm>
#include <system_error>

#include "common/Fault.h"
#include "horalink-setup/Files.h"
#include "horalink-setup/Market.h"
#include "horalink-setup/Services.h"
#include "horalink-setup/SettingsStore.h"
#include "horalink-setup/UserTree.h"
#include "platform/runtime/Paths.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

constexpr const char* startAddIn = "start horalink -Embedding";

std::string StartHost(const std::string& market) {
    return "start --market " + market + " switchdesk --service";
}

bool IsSame(const fs::path& left, const fs::path& right) {
    std::error_code error;
    return fs::weakly_canonical(left, error) == fs::weakly_canonical(right, error);
}

// A name that the settings store can't hold, or that would come out of it changed.
void RequireWritable(const fs::path& root) {
    const std::string& name = root.native();
    const bool odd = name.find('\\') != name.npos || platform::ToUtf8(platform::FromUtf8(name)) != name;
    const bool controls = std::any_of(name.begin(), name.end(), [](unsigned char c) { return c < ' '; });
    if (odd || controls)
        throw tools::WrongCall(
            "--root: a backslash, a control character or broken UTF-8 can't be in the path");
}

fs::path RootFor(const AddRequest& request, const SettingsStore& store, const Places& places) {
    if (!request.root)
        if (const auto entered = store.Root(request.market)) return *entered;
    const fs::path base = fs::absolute(request.root.value_or(places.data)).lexically_normal();
    RequireWritable(base);
    return base / "VELMORA32" / request.market;
}

// Programs read the market out of the path that they lie in.
void RequireShape(const fs::path& root, const std::string& market) {
    const auto is = [](const fs::path& name, const std::string& wanted) {
        return platform::EqualsIgnoringCase(platform::FromUtf8(name.native()), platform::FromUtf8(wanted));
    };
    if (!is(root.filename(), market) || !is(root.parent_path().filename(), "VELMORA32"))
        throw tools::Fault("InstallPath of market " + market + " is " + root.string() +
                           ", which doesn't end in VELMORA32/" + market +
                           "; --root and --force enter it in another place");
}

Package PackageFor(const AddRequest& request, const UserTree& tree, const Places& places) {
    if (request.from) return Package(fs::absolute(*request.from).lexically_normal());
    std::error_code error;
    const fs::path source = tree.Source();
    return Package(fs::exists(source / place::addIn, error) ? source : places.package);
}

std::string LanguageFor(const std::optional<std::string>& asked, const Package& package, const UserTree& tree,
                        const std::string& locale) {
    if (asked) return package.CheckedLanguage(*asked);
    const std::string present = tree.Language();
    for (const std::string& language : package.Languages())
        if (language == present) return language;
    return package.LanguageFor(locale);
}

void TellKept(const std::vector<fs::path>& kept, const std::string& why, Told& told) {
    for (const fs::path& file : kept) told.push_back(why + file.string());
}

void ReloadBus(platform::BusNames& bus) {
    try {
        bus.Reload();
    } catch (const platform::RuntimeError&) {
        // Without a bus there is nothing that could have read the old files.
    }
}

bool HoldsAddIn(const SettingsStore& store) {
    const auto markets = store.Markets();
    return std::any_of(markets.begin(), markets.end(),
                       [&](const std::string& market) { return UserTree(*store.Root(market)).HoldsAddIn(); });
}

// A command that changes things: nobody else does so meanwhile, and the store is read as it is by then.
class Change {
  public:
    explicit Change(const Context& context)
        : context_(context), lock_(context.places.settings.parent_path()), store_(context.places.settings) {}

    SettingsStore& Store() { return store_; }

    Told Add(const AddRequest& request);
    Told Remove(const std::string& market);

  private:
    void EnterServices(const std::string& market);
    void Leave(const std::string& market, const UserTree& tree, Told& told);

    const Context& context_;
    DirectoryLock lock_;
    SettingsStore store_;
};

Told Change::Add(const AddRequest& request) {
    Told told;
    const Services services(context_.places);
    const UserTree tree(RootFor(request, store_, context_.places));
    RequireShape(tree.Root(), request.market);
    const auto entered = store_.Root(request.market);
    const bool moves = entered && !IsSame(*entered, tree.Root());
    if (moves && !request.force)
        throw tools::Fault("market " + request.market + " is entered at " + entered->string() +
                           " already; --force moves it");
    if (!request.force) {
        services.RequireFree(addInClass, startAddIn);
        services.RequireFree(ExchangeClass(request.market), StartHost(request.market));
    }
    const Package package = PackageFor(request, tree, context_.places);
    const std::string language = LanguageFor(request.language, package, tree, context_.places.locale);
    TellKept(tree.LayOut(context_.engine, package, language, request.force),
             "Kept, as it is your own: ", told);
    if (moves) Leave(request.market, UserTree(*entered), told);
    store_.SetRoot(request.market, tree.Root());
    store_.Save();
    EnterServices(request.market);
    told.push_back("Market " + request.market + " is entered at " + tree.Root().string() +
                   (language.empty() ? "." : ", language " + language + "."));
    return told;
}

void Change::EnterServices(const std::string& market) {
    const Services services(context_.places);
    const bool addIn = services.Enter(addInClass, startAddIn);
    const bool host = services.Enter(ExchangeClass(market), StartHost(market));
    if (addIn || host) ReloadBus(context_.bus);
}

// Others of the family may live in the same tree: as long as it is there they need its place.
void Change::Leave(const std::string& market, const UserTree& tree, Told& told) {
    TellKept(tree.TakeAway(context_.engine), "Left, as others may need it: ", told);
    if (!tree.Exists()) store_.RemoveRoot(market);
}

Told Change::Remove(const std::string& market) {
    const auto root = store_.Root(market);
    if (!root) throw tools::WrongCall("market " + market + " isn't entered");
    Told told;
    Leave(market, UserTree(*root), told);
    store_.ForgetUse(market);
    store_.Save();
    const Services services(context_.places);
    const bool host = services.Remove(ExchangeClass(market));
    const bool addIn = !HoldsAddIn(store_) && services.Remove(addInClass);
    if (host || addIn) ReloadBus(context_.bus);
    told.push_back("Market " + market + " is removed.");
    return told;
}

std::string OnlyMarket(const SettingsStore& store) {
    const auto markets = store.Markets();
    if (markets.empty()) throw tools::Fault("no market is entered, so there is nothing to remove");
    if (markets.size() == 1) return markets.front();
    std::string names;
    for (const std::string& market : markets) names += (names.empty() ? "" : ", ") + market;
    throw tools::WrongCall("--market is missing; entered are: " + names);
}

bool CanRun(const fs::path& program) {
    return access(program.c_str(), X_OK) == 0;
}

fs::path ProgramOf(const fs::path& root, const std::string& program) {
    return root / (program == "horalink" ? place::addIn : place::host);
}

}  // namespace

Told Add(const Context& context, const AddRequest& request) {
    return Change(context).Add(request);
}

Told Remove(const Context& context, const std::optional<std::string>& market) {
    Change change(context);
    return change.Remove(market ? *market : OnlyMarket(change.Store()));
}

Told Use(const Context& context, const std::string& market) {
    Change change(context);
    SettingsStore& store = change.Store();
    if (!store.Has(market))
        throw tools::WrongCall("market " + market + " isn't entered; 'horalink-setup add --market " + market +
                               "' enters it");
    store.Use(market);
    store.Save();
    return {"Hosts get the add-in of market " + market + ". One that is open now stays until it is closed."};
}

Told ChangeLanguage(const Context& context, const std::string& language,
                    const std::optional<std::string>& market, bool force) {
    Change change(context);
    AddRequest request;
    request.market = market ? *market : change.Store().MarketInUse();
    if (market && !change.Store().Has(*market))
        throw tools::WrongCall("market " + *market + " isn't entered");
    request.language = language;
    request.force = force;
    return change.Add(request);
}

std::vector<std::string> CommandToStart(const Context& context, const std::optional<std::string>& market,
                                        const std::string& program,
                                        const std::vector<std::string>& arguments) {
    const SettingsStore store(context.places.settings);
    const std::string chosen = market ? *market : store.MarketInUse();
    auto root = store.Root(chosen);
    if (!root || !CanRun(ProgramOf(*root, program))) {
        Change change(context);
        AddRequest request;
        request.market = chosen;
        change.Add(request);
        root = change.Store().Root(chosen);
    }
    const fs::path file = ProgramOf(*root, program);
    if (!CanRun(file))
        throw tools::Fault(file.string() +
                           ": the program isn't there, or may not be run; see 'horalink-setup status'");
    std::vector<std::string> command{file.string()};
    if (program == "switchdesk") command.insert(command.end(), {"--market", chosen});
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

}  // namespace setup
