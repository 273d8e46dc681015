#include <unistd.h>

#include <cstdlib>

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
    void Edit(const std::string& from, const std::string& to) const {
        std::string text = Settings();
        text.replace(text.find(from), from.size(), to);
        std::ofstream(places_.settings) << text;
    }
};

TEST_F(StatusTest, FindsNothingWrongBeforeAndAfterTheFirstEntry) {
    EXPECT_EQ(Problems(), "");
    EXPECT_NE(TextOf(Inspect(context_)).find("No market is entered for you yet"), std::string::npos);
    AddMarket();
    AddMarket("20002");
    const Report report = Inspect(context_);
    EXPECT_EQ(Problems(), "");
    ASSERT_EQ(report.installations.size(), 2u);
    EXPECT_EQ(report.installations[0].databases.size(), 4u);
    EXPECT_EQ(report.installations[0].language, "en");
    EXPECT_TRUE(report.installations[0].inUse);
    EXPECT_FALSE(report.installations[1].inUse);
    ASSERT_EQ(report.classes.size(), 3u);
    EXPECT_EQ(report.classes[0].state, "startable");
    bus_.running.insert(addInClass);
    EXPECT_EQ(Inspect(context_).classes[0].state, "running");
}

TEST_F(StatusTest, NamesWhatIsBroken) {
    struct Case {
        const char* what;
        std::function<void()> breakIt;
        std::string problem;
    };
    const Case cases[] = {
        {"a database is missing", [&] { fs::remove(Tree() / place::help); },
         "help (Horalink.hlp): it is missing"},
        {"a link leads nowhere", [&] { fs::remove(places_.package / "ADDINS/DATABASE/en/Horalink.lng"); },
         "texts of the add-in (Horalink.lng): its link leads to " + places_.package.string() +
             "/ADDINS/DATABASE/en/Horalink.lng, which isn't there"},
        {"no database", [&] { Replace(place::commonTexts, std::string(4096, 'x')); },
         "common texts (Common.LNG): "},
        {"an empty database", [&] { Replace(place::addInTexts, ""); },
         "texts of the add-in (Horalink.lng): "},
        {"a database of another kind",
         [&] {
             fs::copy_file(DATABASES "/en/Horalink.lng", Tree() / place::registry,
                           fs::copy_options::overwrite_existing);
         },
         "register (Register.mdb): "},
        {"a directory in its place",
         [&] {
             fs::remove(Tree() / place::registry);
             fs::create_directory(Tree() / place::registry);
         },
         "register (Register.mdb): "},
        {"the program is missing", [&] { fs::remove(Tree() / place::addIn); },
         "the add-in's program can't start: it is missing"},
        {"the program may not be run", [&] { Replace(place::addIn, "x"); },
         "the add-in's program can't start: it may not be run"},
        {"no backgrounds", [&] { fs::remove(Tree() / place::backgrounds); },
         "the backgrounds can't be shown: it is missing"},
        {"no tree", [&] { fs::remove_all(Tree()); }, "there is no directory " + Tree().string()},
        {"no backslash at the end", [&] { Edit("10001\\\n", "10001\n"); }, "doesn't end in a backslash"},
        {"a tree of the wrong shape",
         [&] {
             fs::rename(Tree(), top_ / "home/elsewhere");
             std::ofstream(places_.settings)
                 << "[VELMORA32/10001]\nInstallPath=" << (top_ / "home/elsewhere").string() << "\\\n";
         },
         "doesn't end in VELMORA32/10001"},
        {"another tree that differs in case only",
         [&] { fs::create_directories(top_ / "HOME/.local/share/VELMORA32/10001"); },
         "programs look for it in " + top_.string() + "/HOME/.local/share/VELMORA32/10001"},
        {"no package", [&] { fs::remove_all(places_.package); }, "this is no tree of an installed package"},
        {"the class isn't known", [&] { bus_.startable.clear(); },
         "doesn't know the class Horalink10013.cOLELayer"},
        {"no bus", [&] { bus_.isThere = false; }, "The session bus can't be asked"},
        {"a service file for nothing", [&] { fs::remove(places_.program); },
         "For the class Horalink10013.cOLELayer the bus would start '" + places_.program.string() +
             "', which isn't there"}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        fs::remove_all(top_);
        fs::create_directories(top_);
        for (const char* language : {"de", "en"}) MakeTexts(language);
        fs::copy_file(DATABASES "/Register.mdb", Made(places_.package / place::registry));
        for (const fs::path& program :
             {places_.package / place::addIn, places_.package / place::host, places_.program})
            MakeProgram(program);
        directory_.Write("usr/lib/VELMORA32/10001/BACKGRND/plain.svg", "<svg/>");
        bus_ = FakeBus();
        AddMarket();
        ASSERT_EQ(Problems(), "");
        one.breakIt();
        EXPECT_NE(Problems().find(one.problem), std::string::npos) << Problems();
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
    EXPECT_NE(asUser().find("register (Register.mdb): "), std::string::npos);
    fs::permissions(places_.package / "ADDINS/HELP/en/Horalink.hlp", fs::perms::none);
    EXPECT_NE(asUser().find("help (Horalink.hlp): "), std::string::npos);
}

TEST_F(StatusTest, WritesTheSameForPrograms) {
    places_.data = top_ / "home/with \"quote\"";
    AddMarket();
    fs::remove(Tree() / place::help);
    const std::string json = JsonOf(Inspect(context_));
    EXPECT_NE(
        json.find(R"("what": "help", "file": ")" + top_.string() + R"(/home/with \"quote\"/VELMORA32/)"),
        std::string::npos)
        << json;
    EXPECT_NE(json.find(R"("opens": false, "fault": "it is missing")"), std::string::npos) << json;
    EXPECT_NE(json.find(R"("problems": [{"what": "Market 10001: help)"), std::string::npos) << json;
}

}  // namespace
}  // namespace setup
