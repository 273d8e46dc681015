#include <unistd.h>

#include <algorithm>
#include <functional>

#include "Fixture.h"
#include "horalink-setup/Status.h"

namespace setup {
namespace {

class StatusTest : public SetupTest {
  protected:
    // The problems, one a line.
    std::string Problems() {
        std::string problems;
        for (const Problem& problem : Inspect(context_).problems) {
            EXPECT_FALSE(problem.remedy.empty()) << problem.what;
            problems += problem.what + "\n";
        }
        return problems;
    }
    void Replace(const char* piece, const std::string& content) const {
        fs::remove(Tree() / piece);
        std::ofstream(Tree() / piece) << content;
    }
    void Enter(std::string installPath) const {
        std::replace(installPath.begin(), installPath.end(), '/', '\\');
        std::ofstream(places_.settings) << "[VELMORA32/10001]\nInstallPath=" << installPath << "\n";
    }
};

TEST_F(StatusTest, FindsNothingWrongBeforeAndAfterTheFirstEntry) {
    EXPECT_EQ(Problems(), "");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "No market is entered for you yet", TextOf(Inspect(context_)));
    AddMarket();
    AddMarket("20002");
    const Report report = Inspect(context_);
    EXPECT_EQ(Problems(), "");
    EXPECT_EQ(report.installations.at(0).databases.size(), 4u);
    EXPECT_EQ(report.installations[0].language, "en");
    EXPECT_TRUE(report.installations[0].inUse && !report.installations.at(1).inUse);
    EXPECT_EQ(report.classes.size(), 3u);
    EXPECT_EQ(report.classes.at(0).state, "startable");
    bus_.running.insert(addInClass);
    EXPECT_EQ(Inspect(context_).classes[0].state, "running");
}

TEST_F(StatusTest, NamesWhatIsBroken) {
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"help (Horalink.hlp): it is missing", [&] { fs::remove(Tree() / place::help); }},
        {"texts of the add-in (Horalink.lng): its link leads to " + places_.package.string() +
             "/ADDINS/DATABASE/en/Horalink.lng, which isn't there",
         [&] { fs::remove(places_.package / "ADDINS/DATABASE/en/Horalink.lng"); }},
        {"common texts (Common.LNG): ", [&] { Replace(place::commonTexts, std::string(4096, 'x')); }},
        {"texts of the add-in (Horalink.lng): ", [&] { Replace(place::addInTexts, ""); }},
        {"register (Register.mdb): ",
         [&] { Replace(place::registry, *ReadFile(DATABASES "/en/Horalink.lng")); }},
        {"register (Register.mdb): ",
         [&] { fs::remove(Tree() / place::registry) && fs::create_directory(Tree() / place::registry); }},
        {"the add-in's program can't start: it is missing", [&] { fs::remove(Tree() / place::addIn); }},
        {"the add-in's program can't start: it may not be run", [&] { Replace(place::addIn, "x"); }},
        {"the backgrounds can't be shown: it is missing", [&] { fs::remove(Tree() / place::backgrounds); }},
        {"there is no directory " + Tree().string(), [&] { fs::remove_all(Tree()); }},
        {"doesn't end in a backslash", [&] { Enter(Tree().string()); }},
        {"doesn't end in VELMORA32/10001",
         [&] {
             fs::rename(Tree(), top_ / "home/elsewhere");
             Enter((top_ / "home/elsewhere/").string());
         }},
        {"programs look for it in " + top_.string() + "/HOME/.local/share/VELMORA32/10001",
         [&] { fs::create_directories(top_ / "HOME/.local/share/VELMORA32/10001"); }},
        {"this is no tree of an installed package", [&] { fs::remove_all(places_.package); }},
        {"doesn't know the class Horalink10013.cOLELayer", [&] { bus_.startable.clear(); }},
        {"The session bus can't be asked", [&] { bus_.isThere = false; }},
        {"For the class Horalink10013.cOLELayer the bus would start '" + places_.program.string() +
             "', which isn't there",
         [&] { fs::remove(places_.program); }}};
    for (const auto& [problem, breakIt] : cases) {
        SCOPED_TRACE(problem);
        Install();
        bus_ = FakeBus();
        AddMarket();
        ASSERT_EQ(Problems(), "");
        breakIt();
        EXPECT_PRED_FORMAT2(testing::IsSubstring, problem, Problems());
    }
}

// The superuser may read and write everything, so the test works as somebody else.
TEST_F(StatusTest, NamesWhatTheUserMayNotReadOrWrite) {
    AddMarket();
    fs::permissions(top_, static_cast<fs::perms>(0755));
    const bool isRoot = geteuid() == 0;
    const auto asUser = [&] {
        if (isRoot && seteuid(65534) != 0) ADD_FAILURE();
        std::string problems = Problems();
        if (isRoot && seteuid(0) != 0) ADD_FAILURE();
        return problems;
    };
    fs::permissions(Tree() / place::registry, static_cast<fs::perms>(0444));
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "register (Register.mdb): ", asUser());
    fs::permissions(places_.package / "ADDINS/HELP/en/Horalink.hlp", fs::perms::none);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "help (Horalink.hlp): ", asUser());
}

TEST_F(StatusTest, WritesTheSameForPrograms) {
    places_.data = top_ / "home/with \"quote\"";
    AddMarket();
    fs::remove(Tree() / place::help);
    const std::string json = JsonOf(Inspect(context_));
    for (const std::string& part :
         {R"("what": "help", "file": ")" + top_.string() + R"(/home/with \"quote\"/VELMORA32/)",
          std::string(R"("opens": false, "fault": "it is missing")"),
          std::string(R"("problems": [{"what": "Market 10001: help)")})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, part, json);
}

}  // namespace
}  // namespace setup
