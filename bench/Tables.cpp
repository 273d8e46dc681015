// Reads the tables of the language databases as the add-in does; the floor is SQLite calls that fetch and use
// the same fields of the same rows.
#include <benchmark/benchmark.h>

#include "LanguageFiles.h"
#include "harness/Desk.h"
#include "language/FormTexts.h"
#include "language/LanguageDatabase.h"
#include "pictures/comPicture.h"
#include "platform/data/sqlite/SqliteEngine.h"
#include "platform/runtime/Paths.h"

namespace {

using namespace platform;
using bench::LanguageFile;

DatabaseRef OpenAsAddIn(const LanguageFile& file) {
    return MakeSqliteEngine()->OpenDatabase(PathText(file.Path()), true);
}

void Check(benchmark::State& state, bool succeeded, const desk::Desk& computer) {
    if (!succeeded) state.SkipWithError(computer.boxes.LastPrompt().c_str());
}

Text FieldText(sqlite3_stmt* row, int column) {
    const void* text = sqlite3_column_text16(row, column);
    return Text(static_cast<const char16_t*>(text),
                static_cast<std::size_t>(sqlite3_column_bytes16(row, column)) / sizeof(char16_t));
}

// --- messages -------------------------------------------------------------------------------------------

LanguageFile Messages(long rows) {
    return {"Horalink.lng", "tMessages", "i, 'The exchange did not take entry ' || i", rows};
}

void MessagesByAddIn(benchmark::State& state) {
    const LanguageFile file = Messages(state.range(0));
    const DatabaseRef database = OpenAsAddIn(file);
    desk::Desk computer;
    horalink::MessageTexts messages;
    for (auto _ : state)
        Check(state, horalink::LoadMessageTable(computer.boxes, messages, u"tMessages", *database), computer);
}

void MessagesBySqlite(benchmark::State& state) {
    const LanguageFile file = Messages(state.range(0));
    const auto database = bench::Open(file.Path());
    for (auto _ : state) {
        const auto query = bench::Prepare(
            database.get(), "SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID");
        sqlite3_step(query.get());
        std::vector<Text> texts(static_cast<std::size_t>(sqlite3_column_int(query.get(), 1)));
        for (Text& text : texts) {
            sqlite3_step(query.get());
            text = FieldText(query.get(), 1);
        }
        benchmark::DoNotOptimize(texts.data());
    }
}

// --- controls -------------------------------------------------------------------------------------------

LanguageFile ControlTexts(long rows) {
    return {"Horalink.lng", "tControls",
            "'form', 'label', i, 'Caption ' || i, 'Liberation Sans', 9.75, 'What label ' || i || ' tells'",
            rows};
}

// A form of labels. Both benchmarks set their properties by name, as a row may name any type of control: that
// cost isn't measured here.
struct Labels {
    explicit Labels(long count) {
        for (long i = 0; i < count; ++i) form->Add<forms::Label>(u"label", static_cast<std::int16_t>(i));
        all.assign(form->Controls().begin(), form->Controls().end());
    }
    desk::Desk computer;
    std::shared_ptr<forms::Form> form =
        std::make_shared<forms::Form>(u"form", computer.timers, computer.toolkit);
    std::vector<ObjectRef> all;
};

void ControlsByAddIn(benchmark::State& state) {
    const LanguageFile file = ControlTexts(state.range(0));
    const DatabaseRef database = OpenAsAddIn(file);
    Labels labels(state.range(0));
    for (auto _ : state)
        Check(state, horalink::LoadControlsText(labels.computer.boxes, *labels.form, *database),
              labels.computer);
}

void ControlsBySqlite(benchmark::State& state) {
    const LanguageFile file = ControlTexts(state.range(0));
    const auto database = bench::Open(file.Path());
    Labels labels(state.range(0));
    for (auto _ : state) {
        const auto query = bench::Prepare(database.get(),
                                          "select ObjectName,[Index],Caption,FontName,FontSize,ToolTipText "
                                          "from tControls where FormName = 'form'");
        while (sqlite3_step(query.get()) == SQLITE_ROW) {
            benchmark::DoNotOptimize(FieldText(query.get(), 0));
            const auto& label = labels.all[static_cast<std::size_t>(sqlite3_column_int(query.get(), 1))];
            Put(label, "Caption", FieldText(query.get(), 2));
            horalink::SetControlFont(*labels.form, label, FieldText(query.get(), 3),
                                     sqlite3_column_double(query.get(), 4));
            Put(label, "ToolTipText", FieldText(query.get(), 5));
        }
    }
}

// --- pictures -------------------------------------------------------------------------------------------

LanguageFile PictureRows(long rows) {
    return {"Horalink.lng", "tPicture", "'form', 'image', i, 'back' || i || '.svg', 'me', -1", rows};
}

LanguageFile PictureNames(long rows) {
    return {"Common.LNG", "PictureFileName", "1, 'back' || i || '.svg', 'sky' || i || '.svg'", rows};
}

constexpr std::int16_t backgroundSet = 1;

// A form of images, with their files in memory: disks aren't measured here.
struct Images {
    explicit Images(long count) {
        form->Width = 7110;
        form->Height = 4365;
        for (long i = 0; i < count; ++i) {
            all.push_back(&form->Add<forms::Image>(u"image", static_cast<std::int16_t>(i)));
            computer.pictures.files[u"D\\sky" + DecimalText(i) + u".svg"] = "<svg/>";
        }
    }
    desk::Desk computer;
    std::shared_ptr<forms::Form> form =
        std::make_shared<forms::Form>(u"form", computer.timers, computer.toolkit);
    std::vector<forms::Image*> all;
};

void PicturesByAddIn(benchmark::State& state) {
    const LanguageFile rows = PictureRows(state.range(0)), names = PictureNames(state.range(0));
    const DatabaseRef language = OpenAsAddIn(rows), common = OpenAsAddIn(names);
    Images images(state.range(0));
    for (auto _ : state)
        Check(state,
              horalink::LoadFormPictures(images.computer.services, *images.form, language.get(), common.get(),
                                         backgroundSet, u"D\\"),
              images.computer);
}

void PicturesBySqlite(benchmark::State& state) {
    const LanguageFile rows = PictureRows(state.range(0)), names = PictureNames(state.range(0));
    const auto language = bench::Open(rows.Path()), common = bench::Open(names.Path());
    Images images(state.range(0));
    for (auto _ : state) {
        std::map<Text, Text> fileNames;
        const auto set = bench::Prepare(common.get(), "Select * From PictureFileName Where  ID = 1");
        while (sqlite3_step(set.get()) == SQLITE_ROW)
            fileNames[FieldText(set.get(), 1)] = FieldText(set.get(), 2);
        const auto query = bench::Prepare(language.get(),
                                          "select ObjectName,[Index],FileName,BasePanel,BasePanelIndex "
                                          "from tPicture where FormName = 'form'");
        while (sqlite3_step(query.get()) == SQLITE_ROW) {
            benchmark::DoNotOptimize(FieldText(query.get(), 0));
            benchmark::DoNotOptimize(FieldText(query.get(), 3));
            forms::Image& image = *images.all[static_cast<std::size_t>(sqlite3_column_int(query.get(), 1))];
            const Text path = u"D\\" + fileNames[FieldText(query.get(), 2)];
            if (images.computer.pictures.Dir(path).empty() || sqlite3_column_int(query.get(), 4) != -1)
                continue;
            image.Place(0, 0, images.form->Width, images.form->Height);
            image.Picture = images.computer.pictures.LoadPicture(path);
        }
    }
}

}  // namespace

BENCHMARK(MessagesByAddIn)->Arg(4096)->Arg(8192)->Arg(16384)->Arg(32767);
BENCHMARK(MessagesBySqlite)->Arg(32767);
BENCHMARK(ControlsByAddIn)->Arg(1250)->Arg(2500)->Arg(5000)->Arg(10000);
BENCHMARK(ControlsBySqlite)->Arg(10000);
BENCHMARK(PicturesByAddIn)->Arg(125)->Arg(250)->Arg(500)->Arg(1000);
BENCHMARK(PicturesBySqlite)->Arg(1000);
BENCHMARK_MAIN();
