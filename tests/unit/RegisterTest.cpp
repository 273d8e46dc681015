// The register through a whole computer: its copy, its write, and what can be in their way.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdarg.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "locator/VersionRecord.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/headless/Headless.h"
#include "platform/runtime/Paths.h"

namespace {
bool hasNamelessFiles = true;
}

// Some file systems have no files without a name.
extern "C" int open(const char* name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if (!hasNamelessFiles && (flags & O_TMPFILE) == O_TMPFILE) return errno = EOPNOTSUPP, -1;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

namespace platform {
namespace {

namespace fs = std::filesystem;

// The register that everybody shares, written by the add-in's own routine.
struct SharedRegisterTest : testing::Test {
    static constexpr auto dynaset = RecordsetType::Dynaset, forwardOnly = RecordsetType::ForwardOnly;
    SharedRegisterTest() {
        umask(022);
        fs::create_directories(all.parent_path());
        Run(all,
            "create table Registry (AppName, Version);"
            "insert into Registry values ('Horalink.mra', '0.0.0'), ('Other.mra', printf('%.20000c', 'x'))");
        content = Content(all);
        computer.app.path = PathText(At("all/ADDINS"));
    }
    ~SharedRegisterTest() override { hasNamelessFiles = true; }
    fs::path At(const char* place) const { return directory.Path() / place; }
    static void Run(const fs::path& file, const std::string& sql) {
        sqlite3* database = nullptr;
        sqlite3_open(file.c_str(), &database);
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
        sqlite3_close(database);
    }
    static std::string Content(const fs::path& file) {
        std::ifstream bytes(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(bytes), {}};
    }
    std::unique_ptr<DatabaseEngine> Engine() const {
        return MakeSqliteEngine(Layers({At("own"), At("all")}, {}));
    }
    std::unique_ptr<Recordset> Rows(RecordsetType type, bool readOnly = false) const {
        return Engine()
            ->OpenDatabase(UpperCase(PathText(all)), readOnly)
            ->OpenRecordset(u"select * from Registry where AppName = 'Other.mra'", type);
    }
    bool Update(TextView name = u"Horalink.mra") {
        const auto engine = Engine();
        const horalink::Services services{computer.app,      computer.clock,    computer.locale,
                                          computer.settings, *engine,           computer.automation,
                                          computer.timers,   computer.boxes,    computer.screen,
                                          computer.toolkit,  computer.pictures, [] {}};
        return UpdateAddInVersion(services, u"Addins", name, u"13.0.1");
    }
    // The versions, ours first; that of the other as its length.
    static std::string State(const fs::path& file) {
        const auto rows =
            OpenSqliteDatabase(file, false)->OpenRecordset(u"select * from Registry", forwardOnly);
        const std::string ours = ToUtf8(rows->Field(u"Version").ToText());
        rows->MoveNext();
        return ours + " " + std::to_string(rows->Field(u"Version").ToText().size());
    }
    std::string OwnFiles() const {
        std::string files;
        for (const auto& entry : fs::directory_iterator(own.parent_path()))
            files += entry.path().filename().string() + " ";
        return files;
    }

    headless::Headless computer;
    TemporaryDirectory directory;
    const fs::path all = At("all/MORA32/DATABASE/Register.mdb"), own = At("own/MORA32/DATABASE/Register.mdb");
    std::string content;
};

TEST_F(SharedRegisterTest, BecomesTheUsersOwnWhenItIsWritten) {
    for (const bool named : {false, true}) {
        hasNamelessFiles = !named;
        fs::remove_all(At("own"));
        EXPECT_TRUE(Update(u"Nobody.mra"));
        EXPECT_FALSE(fs::exists(At("own"))) << "nothing was written";
        EXPECT_TRUE(Update());
        EXPECT_EQ(OwnFiles(), "Register.mdb ");
        EXPECT_EQ(fs::status(own).permissions(), fs::perms(0644));
        EXPECT_EQ(State(own), "13.0.1 20000");
        EXPECT_EQ(Content(all), content);
    }
    Run(own, "update Registry set Version = 'mine' where AppName = 'Horalink.mra';");
    EXPECT_TRUE(Update());
    EXPECT_EQ(State(own), "13.0.1 20000");
}

TEST_F(SharedRegisterTest, IsCopiedToBeChangedAloneAndNotOverACopyThatIsThere) {
    const auto rows = Rows(dynaset);
    const auto change = [&] { rows->Edit(), rows->SetField(u"Version", u"7"), rows->Update(); };
    EXPECT_EQ(Rows(forwardOnly)->Field(u"Version"), rows->Field(u"Version"));
    EXPECT_EQ(FaultOf([&] { Rows(dynaset, true)->Edit(); }),
              "3027 '" + all.string() + "' can't be changed: it is read-only");
    sqlite3* other = nullptr;
    sqlite3_open(all.c_str(), &other);
    sqlite3_exec(other, "begin exclusive", nullptr, nullptr, nullptr);
    EXPECT_EQ(FaultOf(change),
              "3260 '" + all.string() + "' is locked by another program; try again in a moment");
    EXPECT_FALSE(fs::exists(own));
    sqlite3_close(other);
    ASSERT_TRUE(Update());
    change();
    EXPECT_EQ(State(own), "13.0.1 1");
}

}  // namespace
}  // namespace platform
