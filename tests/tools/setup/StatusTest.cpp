#include "horalink-setup/Status.h"

#include <functional>

#include "Fixture.h"

namespace setup {
namespace {

class StatusTest : public SetupTest {
  protected:
    // The problems, one a line.
    std::string Problems() {
        std::string problems;
        for (const Problem& problem : Inspect(context_).problems) problems += problem.what + "\n";
        return problems;
    }
    void Replace(const char* piece, const std::string& content) const {
        fs::remove(Tree() / piece);
        Lay(Tree() / piece, content);
    }
    void Enter(const std::string& installPath) const {
        Lay(places_.settings, "[VELMORA32/10001]\nInstallPath=" + Backslashed(installPath) + "\n");
    }
};

TEST_F(StatusTest, FindsNothingWrongBeforeAndAfterTheFirstEntry) {
    EXPECT_EQ(Problems(), "");
    places_.data = top_ / "home/with \"quote\"";
    AddMarket();
    AddMarket("20002");
    bus_.running.insert(addInClass);
    const Report report = Inspect(context_);
    EXPECT_EQ(Problems(), "");
    EXPECT_EQ(report.installations.at(0).databases.size(), 4U);
    EXPECT_TRUE(report.installations[0].inUse && !report.installations.at(1).inUse);
    EXPECT_EQ(report.classes.at(0).state + " " + report.classes.at(1).state, "running startable");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, top_.string() + R"(/home/with \"quote\"/VELMORA32/)",
                        JsonOf(report));
}

TEST_F(StatusTest, NamesWhatIsBroken) {
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"help (Horalink.hlp): it is missing", [&] { fs::remove(Tree() / place::help); }},
        {"ADDINS/DATABASE/en/Horalink.lng, which isn't there",
         [&] { fs::remove(places_.package / "ADDINS/DATABASE/en/Horalink.lng"); }},
        {"texts of the add-in (Horalink.lng): ", [&] { Replace(place::addInTexts, ""); }},
        {"register (Register.mdb): ",
         [&] { Replace(place::registry, *ReadFile(DATABASES "/en/Horalink.lng")); }},
        {"register (Register.mdb): ",
         [&] { fs::remove(Tree() / place::registry) && fs::create_directory(Tree() / place::registry); }},
        {"program can't start: it is missing", [&] { fs::remove(Tree() / place::addIn); }},
        {"program can't start: it may not be run", [&] { Replace(place::addIn, "x"); }},
        {"there is no directory " + Tree().string(), [&] { fs::remove_all(Tree()); }},
        {"doesn't end in a backslash", [&] { Enter(Tree().string()); }},
        {"doesn't end in VELMORA32/10001",
         [&] {
             fs::rename(Tree(), top_ / "home/elsewhere");
             Enter((top_ / "home/elsewhere/").string());
         }},
        {"this is no tree of an installed package", [&] { fs::remove_all(places_.package); }},
        {"doesn't know the class Horalink10013.cOLELayer", [&] { bus_.startable.clear(); }},
        {"The session bus can't be asked", [&] { bus_.isThere = false; }},
        {"would start '" + places_.program.string() + "', which isn't there",
         [&] { fs::remove(places_.program); }}};
    for (const auto& [problem, breakIt] : cases) {
        Install();
        bus_ = FakeBus();
        AddMarket();
        ASSERT_EQ(Problems(), "") << problem;
        breakIt();
        EXPECT_PRED_FORMAT2(testing::IsSubstring, problem, Problems());
    }
}

}  // namespace
}  // namespace setup
