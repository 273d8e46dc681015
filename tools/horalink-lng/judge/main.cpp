// judge-texts HORALINK.LNG COMMON.LNG HORALINK.HLP: reports faults that the add-in's own routines find in its
// databases. An empty argument leaves a database out.
#include <QGuiApplication>
#include <iostream>

#include "Dialog.h"
#include "Texts.h"
#include "language/LanguageMsgBox.h"
#include "platform/data/sqlite/SqliteEngine.h"

namespace {

constexpr const char* names[] = {"Horalink.lng", "Common.LNG", "Horalink.hlp"};

void Judge(const std::function<void(const lng::Judged&)>& checks, lng::Shelf& shelf, const char* name) {
    const auto found = shelf.databases.find(platform::ToUtf8(platform::UpperCase(platform::FromUtf8(name))));
    if (found == shelf.databases.end()) return;
    try {
        checks({name, found->second});
    } catch (const platform::RuntimeError& error) {
        lng::Report({name, ""}, "it can't be read to its end: " + platform::ToUtf8(error.Description()));
    }
}

void JudgeAll(lng::Shelf& shelf) {
    const auto addIn = [&](const lng::Judged& judged) {
        lng::Desk desk(shelf);
        lng::JudgeProject(judged, desk);
        lng::JudgeMessages(judged, desk);
        lng::JudgeBoxes(judged, shelf, horalink::mode::general);
        lng::JudgeDialog(judged, shelf);
    };
    const auto common = [&](const lng::Judged& judged) {
        lng::JudgeBoxes(judged, shelf, horalink::mode::commonDatabase);
    };
    const auto help = [&](const lng::Judged& judged) {
        lng::JudgeHelp(judged, shelf, lng::NeededTopics(shelf));
    };
    Judge(addIn, shelf, names[0]);
    Judge(common, shelf, names[1]);
    Judge(help, shelf, names[2]);
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);  // only fonts are needed
    const QGuiApplication fonts(argc, argv);
    if (argc != 4) return 2;
    try {
        lng::Shelf shelf;
        for (int i = 1; i < argc; ++i)
            if (*argv[i] != '\0')
                shelf.databases[platform::ToUtf8(platform::UpperCase(platform::FromUtf8(names[i - 1])))] =
                    platform::OpenSqliteDatabase(argv[i], true);
        JudgeAll(shelf);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
