#include "jet/Csv.h"

#include "common/Fault.h"

namespace lng {

namespace {

class CsvReader {
  public:
    CsvReader(std::string_view text, std::string_view nullMark) : rest_(text), nullMark_(nullMark) {}

    std::vector<std::vector<CsvField>> Read() {
        std::vector<std::vector<CsvField>> rows;
        while (!rest_.empty()) rows.push_back(TakeRow());
        return rows;
    }

  private:
    std::vector<CsvField> TakeRow() {
        std::vector<CsvField> row{TakeField()};
        while (Skip(',')) row.push_back(TakeField());
        if (!Skip('\n') && !rest_.empty()) throw tools::Fault("a field has more behind its closing quote");
        return row;
    }

    CsvField TakeField() {
        if (Skip('"')) return TakeQuoted();
        const std::string_view plain = rest_.substr(0, rest_.find_first_of(",\n"));
        rest_.remove_prefix(plain.size());
        if (plain == nullMark_) return std::nullopt;
        return std::string(plain);
    }

    std::string TakeQuoted() {
        std::string text;
        for (;;) {
            const auto end = rest_.find('"');
            if (end == std::string_view::npos) throw tools::Fault("the closing quote of a field is missing");
            text += rest_.substr(0, end);
            rest_.remove_prefix(end + 1);
            if (!Skip('"')) return text;
            text += '"';
        }
    }

    bool Skip(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::string_view rest_, nullMark_;
};

}  // namespace

std::vector<std::vector<CsvField>> ParseCsv(std::string_view text, std::string_view nullMark) {
    return CsvReader(text, nullMark).Read();
}

}  // namespace lng
