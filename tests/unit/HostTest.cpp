#include <gtest/gtest.h>
#include <QDateTime>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "host/ExchangeObject.h"
#include "host/HostObject.h"
#include "host/Options.h"
#include "host/ResponseObject.h"
#include "host/Store.h"
#include "host/ZoneTime.h"
#include "platform/automation/Introspection.h"
#include "platform/headless/Timers.h"
#include "platform/qt/QtText.h"

namespace switchdesk {
namespace {

using namespace platform;

TEST(OptionsTest, RefusesWhatCannotBe) {
    std::istringstream lines(
        "A|--open|--open=nowhere|--offset=x|--offset=nan|--login|--service=1|--exchange=|--exchange==local|"
        "--exchange=A=|--exchange=A=else|--exchange=A --exchange=A=local|--market=|--answer=late:|"
        "--answer=late:-1|--answer=soon|--item=1|--item=1:ED=x|--item=x:CMD=y|--item=1=CMD:x|--drop-item=-1|"
        "--lack=nomember|--logins=x|--other=x");
    for (std::string line; std::getline(lines, line, '|');)
        EXPECT_EQ(ErrorOf([&] { ParseOptions(("switchdesk " + QString(line.c_str())).split(' ')); }), 5)
            << line;
}

TEST(OptionsTest, TakesAnAddressThatIsOneWordForSshAndNoOption) {
    for (const char* address :
         {"", "-oProxyCommand=x", "-b@far", "a@-far", "a b@far", " far", "a@b;c", "\"far\"", "a$(b)", "a\nb",
          "a@b@c", "@far", "a@", "far:22", "f\u00e4r", "%h", ".", "_"})
        EXPECT_EQ(ErrorOf([&] { ParseExchange(QString("A=ssh:") + address); }), 5) << address;
    for (const char* address : {"far", "root@10.0.0.7", "_a-b.c@pbx-1.example.org", "A_1@a_b"}) {
        const ExchangeEntry entry = ParseExchange(QString("A=B =ssh:") + address + ",set");
        EXPECT_EQ(Joined(entry.name, entry.isSimulated, FromQt(entry.address), entry.maySet),
                  std::string("A=B|False|") + address + "|True|");
    }
}

TEST(ExchangesFileTest, HasALineForEach) {
    const TemporaryDirectory directory;
    const auto read = [&](const char* lines) {
        const auto file = directory.Write("exchanges.ini", lines);
        std::string all;
        for (const ExchangeEntry& entry : ReadExchanges(file))
            all += ToUtf8(entry.name) + (entry.isSimulated ? "?" : "") + ">" + entry.address.toStdString() +
                   (entry.maySet ? "!" : "") + ";";
        return all;
    };
    EXPECT_TRUE(ReadExchanges(directory.Path() / "none").empty());
    EXPECT_EQ(
        read("; of ours\nMain Office = ssh:root@pbx1,set\nB\xc3\xbcro=local, set\nThis PC=local\nB=ssh:b\n"),
        "B>b;B\xc3\xbcro>!;Main Office>root@pbx1!;This PC>;");
    EXPECT_EQ(ErrorOf([&] { read("A=ssh:-x\n"); }), 5);
    EXPECT_EQ(ErrorOf([&] { read("A local\n"); }), 75);
}

TEST(ZoneTimeTest, KnowsWhatClocksSkipAndWhatTheyShowTwice) {
    // Each time in hours from the beginning of the day in UTC.
    const Table<const char*, DateParts, std::vector<std::int64_t>> cases = {
        {"America/New_York", {2026, 3, 8, 1, 30, 0}, {6}},
        {"America/New_York", {2026, 3, 8, 2, 30, 0}, {}},
        {"America/New_York", {2026, 11, 1, 1, 30, 0}, {5, 6}},
        {"Australia/Lord_Howe", {2026, 10, 4, 2, 29, 0}, {}},
        {"Pacific/Apia", {2011, 12, 30, 12, 30, 0}, {}},
        {"Asia/Tokyo", {2026, 3, 8, 9, 0, 0}, {0}}};
    for (const auto& [name, shown, hours] : cases) {
        const QTimeZone zone(name);
        const auto midnight = QDateTime({shown.year, shown.month, shown.day}, {}, QTimeZone::utc());
        std::vector<std::int64_t> found;
        for (const std::int64_t time : TimesShowing(shown, zone)) {
            found.push_back((time - midnight.toSecsSinceEpoch()) / 3600);
            EXPECT_EQ(MakeDate(ShownAt(time, zone)), MakeDate(shown));
        }
        EXPECT_EQ(found, hours) << name << " " << shown.hour;
    }
}

TEST(StoreTest, KeepsAnyTextUnderAnyNameUnlessItCannotBeWritten) {
    const TemporaryDirectory directory;
    const auto file = directory.Path() / "new/store.ini";
    const Text kept = u" 3150,2295\n[x]=\\@\u00fc%";
    Store store(file), other(file), nowhere("/proc/no/store.ini");
    const std::pair<Text, Text> names[] = {
        {u"A", u"k=[1]"}, {u"a", u"K=[1]"}, {u"A/k", u""}, {u"", u"A/k"}, {u"General", u"%"}};
    for (const auto& [application, key] : names) store.Set(application, key, application + kept + key);
    other.Set(u"B", u"k", u"of another host");
    for (const auto& [application, key] : names)
        EXPECT_EQ(Store(file).Get(application, key), application + kept + key) << ToUtf8(application);
    EXPECT_EQ(store.Get(u"B", u"k"), u"of another host");
    EXPECT_EQ(store.Get(u"A", u"MOVE"), std::nullopt);
    EXPECT_THROW(nowhere.Set(u"A", u"K", u"v"), RuntimeError);
    EXPECT_EQ(nowhere.Get(u"A", u"K"), std::nullopt);
}

TEST(ExchangeDeskTest, AKeyAloneEndsALogin) {
    struct NoLoop : headless::Timers<EventLoop> {
        HandleRef WhenReadable(int, std::function<void()>) override { return {}; }
        HandleRef WhenWritable(int, std::function<void()>) override { return {}; }
        void Run() override {}
        void Quit() override {}
        void ServeOnce() override {}
        HandleRef HoldInput() override { return {}; }
    } loop;
    CallLog log;
    Misbehaviour misbehaviour;
    ExchangeDesk desk(loop, {log, misbehaviour});
    desk.Add(u"A", nullptr);
    Text reported;
    desk.ReportTo({[&](const Text& name, const Text& text) { reported += name + u": " + text; }, [] {}});
    const Text key = desk.Login(u"A", nullptr);
    EXPECT_EQ(reported, u"");
    EXPECT_EQ(desk.Login(u"A", nullptr), u"BUSY");
    EXPECT_EQ(reported, u"A: busy with another request");
    EXPECT_EQ(*desk.BusyBesides(u"B"), u"A");
    EXPECT_EQ(desk.BusyBesides(u"A"), nullptr);
    Call(std::make_shared<ExchangeObject>(Observation{log, misbehaviour}, desk), "LogOut", u"B", key);
    EXPECT_EQ(desk.BusyBesides(u"B"), nullptr);
    EXPECT_EQ(desk.Login(u"B", nullptr), u"ERROR");
}

// The members of a class as the introspection files write them.
std::map<std::string, std::string> MembersOf(const ClassDescription& described) {
    std::map<std::string, std::string> members;
    for (const Member& member : described.members) {
        std::string line, type(SignatureOf(member.result));
        for (const Parameter& parameter : member.parameters)
            line += std::string(line.empty() ? "" : ", ") + std::string(parameter.name) + ": " +
                    std::string(SignatureOf(parameter.type));
        const char* const kind = member.kind == InvokeKind::Method        ? "call("
                                 : member.kind == InvokeKind::PropertyGet ? "read("
                                                                          : "write(";
        std::string& all = members[std::string(member.name)];
        all += (all.empty() ? "" : "; ") + (kind + line) + ")" + (type.empty() ? "" : ": " + type);
    }
    return members;
}

TEST(IntrospectionFilesTest, NameWhatThisHostServes) {
    const std::pair<const char*, const ClassDescription&> cases[] = {
        {"/host.xml", HostObject::Description()},
        {"/exchange.xml", ExchangeObject::Description()},
        {"/response.xml", ResponseObject::Description()}};
    for (const auto& [name, described] : cases) {
        std::ifstream file(std::string(INTROSPECTION) + name);
        const std::string xml{std::istreambuf_iterator<char>(file), {}};
        const std::regex annotation("Member\\.(\\w+)\" value=\"([^\"]*)\""), byReference(" by reference");
        std::map<std::string, std::string> members;
        for (std::sregex_iterator i(xml.begin(), xml.end(), annotation), end; i != end; ++i)
            members[(*i)[1]] = std::regex_replace((*i)[2].str(), byReference, "");
        EXPECT_EQ(members, MembersOf(described)) << name;
    }
}

}  // namespace
}  // namespace switchdesk
