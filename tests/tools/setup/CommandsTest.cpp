#include "Fixture.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

#include "horalink-setup/SettingsStore.h"
#include "horalink-setup/UserTree.h"
#include "platform/desktop/Paths.h"

namespace setup {
namespace {

class CommandsTest : public SetupTest {
  protected:
    std::string LinkOf(const char* piece, const std::string& market = "10001") const {
        return fs::read_symlink(Tree(market) / piece).lexically_relative(places_.package);
    }
    static bool Mentions(const Told& told, const std::string& part) {
        return std::any_of(told.begin(), told.end(),
                           [&](const std::string& sentence) { return sentence.find(part) != sentence.npos; });
    }
    std::string MarketInUse() const { return SettingsStore(places_.settings).MarketInUse(); }
};

TEST_F(CommandsTest, LinksIntoThePackageAndCopiesTheRegister) {
    places_.locale = "de_CH.UTF-8";
    AddMarket();
    const std::pair<const char*, const char*> links[] = {
        {place::addIn, "ADDINS/horalink"},  {place::addInTexts, "ADDINS/DATABASE/de/Horalink.lng"},
        {place::host, "MORA32/switchdesk"}, {place::commonTexts, "MORA32/DATABASE/de/Common.LNG"},
        {place::backgrounds, "BACKGRND"},   {place::help, "ADDINS/HELP/de/Horalink.hlp"}};
    for (const auto& [piece, target] : links) EXPECT_EQ(LinkOf(piece), target);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(Tree() / place::registry)));
    EXPECT_EQ(Settings(), "[VELMORA32/10001]\nInstallPath=" + Backslashed(Tree()) + "\\\n");
}

TEST_F(CommandsTest, AddingAgainMendsAndKeepsWhatIsTheUsersOwn) {
    AddMarket();
    for (const char* piece : {place::addIn, place::addInTexts, place::backgrounds})
        fs::remove(Tree() / piece);
    Lay(Tree() / place::addInTexts, "own texts");
    Lay(Tree() / "BACKGRND/cat.svg", "own picture");
    Lay(Tree() / place::registry, "own register");
    const Told told = AddMarket();
    EXPECT_TRUE(Mentions(told, "Horalink.lng") && Mentions(told, "BACKGRND"));
    EXPECT_EQ(LinkOf(place::addIn), "ADDINS/horalink");
    EXPECT_EQ(ReadFile(Tree() / place::addInTexts), "own texts");
    EXPECT_EQ(ReadFile(Tree() / place::registry), "own register");
    AddByForce();
    EXPECT_TRUE(fs::is_symlink(Tree() / place::addInTexts));
    EXPECT_NE(ReadFile(Tree() / place::registry), "own register");
    EXPECT_EQ(ReadFile(Tree() / "BACKGRND/cat.svg"), "own picture") << "a directory is never replaced";
}

TEST_F(CommandsTest, MovesAMarketOnlyByForce) {
    AddMarket();
    const std::string settings = Settings(), home = Home();
    EXPECT_THROW(AddMarket("10001", top_ / "home/other place"), tools::Fault);
    EXPECT_EQ(Settings() + Home(), settings + home);
    AddMarket("10001", top_ / "home/other place", true);
    AddMarket();  // without a root it stays where it is
    EXPECT_FALSE(fs::exists(Tree()));
    EXPECT_TRUE(fs::exists(top_ / "home/other place/VELMORA32/10001/ADDINS/horalink"));
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "\\other place\\VELMORA32\\10001\\\n", Settings());
}

TEST_F(CommandsTest, RefusesRootsThatTheSettingsCannotHoldAndEntriesThatProgramsTakeForAnotherMarket) {
    for (const char* root : {"back\\slash", "new\nline", "bad\xFFutf8"})
        EXPECT_THROW(AddMarket("10001", top_ / root), tools::WrongCall) << root;
    EXPECT_EQ(Home(), "");
    Lay(places_.settings, "[VELMORA32/10001]\nInstallPath=" + top_.string() + "/x/\n");
    EXPECT_THROW(AddMarket(), tools::Fault);
    EXPECT_FALSE(fs::exists(top_ / "x"));
}

TEST_F(CommandsTest, RemovalLeavesNothingOfOursAndLosesNothingOfOthers) {
    const std::string settings =
        "; mine\n[VELMORA32/10001]\nOther=20002\n\n[Other/20002]\nInstallPath=\\x\\\n";
    Lay(places_.settings, settings);
    AddMarket();
    EXPECT_NE(Settings(), settings);
    Remove(context_, std::nullopt);
    EXPECT_EQ(Settings(), settings);
    EXPECT_EQ(Home(), ".config/velmora/settings.ini\n");
}

TEST_F(CommandsTest, RemovalTakesFilesAndDirectoriesThatWereMade) {
    AddMarket();
    AddMarket("20002");
    Use(context_, "20002");
    EXPECT_THROW(Remove(context_, std::nullopt), tools::WrongCall) << "which of the two?";
    Remove(context_, "20002");
    EXPECT_EQ(MarketInUse(), "10001");
    Remove(context_, "10001");
    EXPECT_EQ(Home(), "");
    EXPECT_FALSE(fs::exists(places_.settings.parent_path()) || fs::exists(places_.data / "VELMORA32"));
    EXPECT_THROW(Remove(context_, "10001"), tools::WrongCall);
    EXPECT_THROW(Remove(context_, std::nullopt), tools::Fault) << "there is nothing to remove";
}

TEST_F(CommandsTest, WhatOthersHaveInATreeStaysAndStaysEntered) {
    AddMarket();
    Lay(Tree() / "ADDINS/neighbour", "program");
    const std::string settings = Settings();
    EXPECT_TRUE(Mentions(Remove(context_, "10001"), "neighbour"));
    EXPECT_EQ(Home(), ".config/velmora/settings.ini\n.local/share/VELMORA32/10001/ADDINS/neighbour\n");
    EXPECT_EQ(Settings(), settings);

    AddMarket();
    const fs::path file = Tree() / place::registry;
    const auto rows = engine_->OpenDatabase(platform::PathText(file))
                          ->OpenRecordset(u"SELECT * FROM Registry", platform::RecordsetType::Dynaset);
    rows->Edit();
    rows->SetField(u"AppName", u"Neighbour.mra");
    rows->Update();
    AddByForce();
    EXPECT_TRUE(Mentions(Remove(context_, "10001"), "Register.mdb")) << "not even force replaces it";
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(CommandsTest, TheClassStartsTheMarketInUse) {
    EXPECT_THROW(Use(context_, "20002"), tools::WrongCall);
    AddMarket("20002");
    EXPECT_EQ(MarketInUse(), "20002") << "the only one";
    AddMarket();
    EXPECT_EQ(MarketInUse(), "10001") << "the default";
    Use(context_, "20002");
    using Words = std::vector<std::string>;
    EXPECT_EQ(CommandToStart(context_, std::nullopt, "horalink", {"-Embedding"}),
              (Words{Tree("20002") / place::addIn, "-Embedding"}));
    EXPECT_EQ(CommandToStart(context_, std::nullopt, "switchdesk", {}),
              (Words{Tree("20002") / place::host, "--market", "20002"}));
    EXPECT_EQ(CommandToStart(context_, "10001", "horalink", {}), Words{Tree() / place::addIn});
}

TEST_F(CommandsTest, ChangesTheLanguageOfOneMarket) {
    EXPECT_THROW(ChangeLanguage(context_, "de", "10001", false), tools::WrongCall) << "not entered";
    AddMarket();
    AddMarket("20002");
    EXPECT_THROW(ChangeLanguage(context_, "xx", std::nullopt, false), tools::WrongCall);
    ChangeLanguage(context_, "de", std::nullopt, false);
    AddMarket();  // keeps it
    EXPECT_EQ(LinkOf(place::addInTexts), "ADDINS/DATABASE/de/Horalink.lng");
    EXPECT_EQ(LinkOf(place::addInTexts, "20002"), "ADDINS/DATABASE/en/Horalink.lng");
}

TEST_F(CommandsTest, WritesServiceFilesOnlyForWhatNoPackageServes) {
    places_.program = top_ / "my $tools/horalink-setup";
    const std::string start = "Exec=\"" + top_.string() + "/my \\$tools/horalink-setup\" start ";
    for (const auto& [name, arguments] :
         {std::pair(std::string(addInClass), "horalink -Embedding"),
          std::pair(ExchangeClass("10001"), "--market 10001 switchdesk --service")})
        Lay(top_ / "usr/share/dbus-1/services" / (name + ".service"),
            "[D-BUS Service]\nName=" + name + "\n" + start + arguments + "\n");
    AddMarket();
    EXPECT_FALSE(fs::exists(places_.ownServices));
    EXPECT_EQ(bus_.reloads, 0);
    AddMarket("20002");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "\n" + start + "--market 20002 switchdesk --service\n",
                        *ReadFile(places_.ownServices / (ExchangeClass("20002") + ".service")));
    EXPECT_EQ(std::distance(fs::directory_iterator(places_.ownServices), {}), 1);
    EXPECT_EQ(bus_.reloads, 1);
}

TEST_F(CommandsTest, LeavesAServiceFileOfTheUsersOwnAlone) {
    const std::string own = "[D-BUS Service]\nName=Horalink10013.cOLELayer\nExec=/opt/other\n";
    const fs::path file = places_.ownServices / "Horalink10013.cOLELayer.service";
    Lay(file, own);
    EXPECT_THROW(AddMarket(), tools::Fault);
    EXPECT_EQ(Settings(), "(none)");
    EXPECT_FALSE(fs::exists(Tree()));
    AddByForce();
    EXPECT_NE(ReadFile(file), own);
    Lay(file, own);
    Remove(context_, "10001");
    EXPECT_EQ(ReadFile(file), own);
}

TEST_F(CommandsTest, ALinkedSettingsFileStaysALink) {
    const fs::path real = directory_.Write("home/dotfiles/settings.ini", "[a]\nb=c\n");
    const auto ownerAlone = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(real, ownerAlone);
    fs::create_directories(places_.settings.parent_path());
    fs::create_symlink(real, places_.settings);
    AddMarket();
    EXPECT_TRUE(fs::is_symlink(places_.settings));
    EXPECT_TRUE(ReadFile(real)->starts_with("[a]\nb=c\n\n[VELMORA32/10001]\n"));
    EXPECT_EQ(fs::status(real).permissions(), ownerAlone);
}

TEST_F(CommandsTest, AStartEntersTheMarketAndMendsATreeThatIsGone) {
    const std::vector<std::string> command{Tree() / place::addIn};
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(CommandToStart(context_, std::nullopt, "horalink", {}), command);
        EXPECT_TRUE(fs::exists(command.front()));
        fs::remove_all(places_.data / "VELMORA32");
    }
    fs::remove(places_.package / place::host);
    EXPECT_THROW(CommandToStart(context_, std::nullopt, "switchdesk", {}), tools::Fault)
        << "its package isn't installed";
}

// Runs `work` in many processes at once, as the bus would start them, and returns how many failed.
int FailuresOf(int processes, const std::function<void(int)>& work) {
    for (int i = 0; i < processes; ++i) {
        if (fork() != 0) continue;
        try {
            work(i);
            _exit(0);
        } catch (const std::exception&) {
            _exit(1);
        }
    }
    int failures = 0;
    for (int status = 0; wait(&status) > 0;) failures += status == 0 ? 0 : 1;
    return failures;
}

TEST_F(CommandsTest, StartsAndRemovalsAtTheSameTimeLeaveNoHalfInstallation) {
    const auto start = [&](int) { CommandToStart(context_, std::nullopt, "horalink", {}); };
    EXPECT_EQ(FailuresOf(12, start), 0);
    EXPECT_EQ(SettingsStore(places_.settings).Markets(), std::vector<std::string>{"10001"});
    // A start may find that its installation was taken away just then; what is left is whole all the same.
    FailuresOf(16, [&](int i) { i % 2 == 0 ? start(i) : void(Remove(context_, "10001")); });
    EXPECT_EQ(SettingsStore(places_.settings).Has("10001"), fs::exists(Tree()));
    AddMarket();
    Remove(context_, std::nullopt);
    EXPECT_EQ(Home(), "");
}

}  // namespace
}  // namespace setup
