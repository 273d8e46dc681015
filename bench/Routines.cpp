// Routines of the add-in that work on many rows, each beside the calls that it can't do without.
//
//   routines RUNS
//
// Prints for each run, in microseconds for 32,767 rows: a message table read by the add-in and by SQLite's
// calls; an answer copied, and its fields read by name alone.
#include <sqlite3.h>

#include "Measure.h"
#include "exchange/dlgAddin.h"
#include "harness/Desk.h"
#include "harness/Files.h"
#include "language/LanguageDatabase.h"
#include "platform/data/sqlite/SqliteEngine.h"

namespace {

using namespace platform;

constexpr std::int16_t rows = 32767;  // the most there can be

void Require(bool succeeded) {
    if (!succeeded) throw std::runtime_error("a routine failed");
}

class MessageTable {
  public:
    MessageTable() {
        Require(sqlite3_open(file_.c_str(), &handle_) == SQLITE_OK);
        Require(
            sqlite3_exec(handle_,
                         "CREATE TABLE tMessages (ID INTEGER PRIMARY KEY, Caption TEXT);"
                         "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 32766) "
                         "INSERT INTO tMessages SELECT i, 'The exchange did not take entry ' || i FROM n",
                         nullptr, nullptr, nullptr) == SQLITE_OK);
    }
    ~MessageTable() { sqlite3_close(handle_); }
    void ReadAsAddIn() {
        horalink::MessageTexts messages;
        Require(horalink::LoadMessageTable(computer_.boxes, messages, u"tMessages", *database_));
    }
    void ReadBySqlite() {
        sqlite3_stmt* query = nullptr;
        sqlite3_prepare_v2(handle_,
                           "SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID", -1,
                           &query, nullptr);
        sqlite3_step(query);
        std::vector<Text> texts(static_cast<std::size_t>(sqlite3_column_int(query, 1)));
        for (Text& text : texts) {
            sqlite3_step(query);
            const auto* read = static_cast<const char16_t*>(sqlite3_column_text16(query, 1));
            text.assign(read, static_cast<std::size_t>(sqlite3_column_bytes16(query, 1)) / sizeof(char16_t));
        }
        sqlite3_finalize(query);
        Require(texts.size() == static_cast<std::size_t>(rows));
    }

  private:
    TemporaryDirectory directory_;
    std::filesystem::path file_ = directory_.Path() / "texts";
    sqlite3* handle_ = nullptr;
    desk::Desk computer_;
    DatabaseRef database_ = OpenSqliteDatabase(file_, true);
};

// An answer in the same process, to leave out the bus.
ObjectRef Answer() {
    auto answer = std::make_shared<horalink::cListRequest>();
    for (std::int16_t i = 0; i < rows; ++i) answer->AddToList(u"02", DecimalText(i), u"11/18 WED", u"LNK_OK");
    return answer;
}

// By name, as from any host.
void ReadFields(const ObjectRef& answer) {
    std::size_t length = 0;
    for (std::int16_t i = 0; i < rows; ++i)
        for (const char* list : {"CMD", "FirstData", "SecondData", "ExtraData"})
            length += Get(answer, list, ByRef(i)).ToText().size();
    Require(length > 0);
}

void MeasureRoutines(int runs) {
    MessageTable table;
    desk::Desk computer;
    horalink::ModuleData data;
    const auto dialog = std::make_shared<horalink::dlgAddin>(computer.services, data);
    const ObjectRef answer = Answer();
    const auto copy = [&] {
        ObjectRef given = answer;
        dialog->CallBack(given);
    };
    for (; runs > 0; --runs)
        bench::PrintRun(bench::TimesOf(
            10, [&] { table.ReadAsAddIn(); }, [&] { table.ReadBySqlite(); }, copy,
            [&] { ReadFields(answer); }));
}

}  // namespace

int main(int, char** arguments) {
    return bench::Measure([&] { MeasureRoutines(std::atoi(arguments[1])); });
}
