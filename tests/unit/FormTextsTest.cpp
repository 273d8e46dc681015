#include "language/FormTexts.h"

#include <gtest/gtest.h>

#include "NotedControl.h"
#include "Table.h"

using namespace horalink;
using namespace platform;
using desk::Notes;

namespace {

// A form of either kind that is painted anew by a note.
struct NotedForm : forms::Form, forms::Toolkit {
    NotedForm(Scheduler& scheduler, Notes& toWrite) : Form(u"form", scheduler, *this), notes(toWrite) {}
    const ClassDescription& Class() const override { return isMdi ? mdi : Form::Class(); }
    std::unique_ptr<forms::View> MakeView(forms::Form&) override { return std::make_unique<View>(*this); }
    struct View : headless::Window {
        explicit View(NotedForm& form) : Window(form, form.gate, [] { return false; }), noted(form) {}
        void FormChanged() override { noted.notes.push_back("Refresh"); }
        NotedForm& noted;
    };
    forms::InputGate gate{Timers()};
    const ClassDescription mdi{"MDIForm", Form::Class().members};
    bool isMdi = false;
    Notes& notes;
};

struct FormTextsTest : testing::Test {
    FormTextsTest() {
        databases.Add(u"a",
                      "create table tForms (ObjectName, Caption, FontName, FontSize);"
                      "create table tControls (FormName, ObjectName, [Index], Caption, FontName, FontSize,"
                      " ToolTipText)");
        form->Show();
    }
    bool LoadForm() { return LoadFormText(computer.boxes, *form, *databases.OpenDatabase(u"a", true)); }
    // The rows are those of the form, but for its name.
    bool LoadControls(const std::string& rows) {
        std::string sql =
            "delete from tControls; insert into tControls values ('other', 'none', -1, '', '', 0, '')";
        for (const char c : ", " + rows) sql += c == '(' ? std::string("('form', ") : std::string(1, c);
        databases.Add(u"a", sql);
        computer.Calls();
        return LoadControlsText(computer.boxes, *form, *databases.OpenDatabase(u"a", true));
    }
    Notes notes;
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    std::shared_ptr<NotedForm> form = std::make_shared<NotedForm>(computer.timers, notes);
};

// The notes of one font: name, size and, where there is one, character set.
Notes Font(const std::string& path, const char* charset = nullptr) {
    Notes font{path + "Name=F", path + "Size=9"};
    if (charset) font.push_back((path == "Font" ? "Font." : path) + "Charset=" + charset);
    return font;
}

TEST_F(FormTextsTest, EachTypeTakesItsFontInItsOwnWay) {
    const auto grid = [](std::initializer_list<const char*> paths, const char* charset) {
        Notes all;
        for (const char* path : paths)
            for (const auto& note : Font(path, charset)) all.push_back(note);
        for (const char* path : {"StyleSets0.Font.", "StyleSets1.Font."})
            for (const auto& note : Font(path, charset)) all.push_back(note);
        return all;
    };
    Notes tab = Font("Font.", "128");
    tab.push_back("Refresh");
    const Table<std::vector<const char*>, Notes> cases = {
        {{"ComboBox", "ListBox", "FileListBox", "DriveListBox", "DirListBox"}, Font("Font")},
        {{"CommandButton", "Label", "MSFlexGrid", "Frame", "OptionButton", "vsFlexArray", "TextBox"},
         Font("Font", "204")},
        {{"SSCommand", "SSCheck", "SSOption", "SSFrame", "SSRibbon", "SSPanel"}, Font("Font", "128")},
        {{"SSTree", "ListView", "TreeView", "SSDBDropDown"}, Font("Font.", "128")},
        {{"SSTab"}, tab},
        {{"CheckBox", "Calendar", "label", "List", "SSP"}, Font("Font.")},
        {{"SSListBar"}, Font("CaptionFont.")},
        {{"SSDBGrid"}, grid({"HeadFont.", "PageFooterFont.", "PageHeaderFont.", "Font."}, "204")},
        {{"SSDBCombo"}, grid({"Font.", "HeadFont."}, "128")}};
    for (const auto& [types, font] : cases)
        for (const char* type : types) {
            form = std::make_shared<NotedForm>(computer.timers, notes);
            form->Show();
            form->Adopt(std::make_shared<desk::NotedControl>(*form, type, notes, "", u"control", 3));
            notes.clear();
            EXPECT_TRUE(LoadControls("('Control', 3, 'C & %CR', 'F', 9, 'T')"));
            Notes expected{"Caption=C & %CR"};
            expected.insert(expected.end(), font.begin(), font.end());
            expected.push_back("ToolTipText=T");
            EXPECT_EQ(notes, expected) << type;
        }
    EXPECT_EQ(computer.Calls(),
              (Notes{"open a read-only",
                     "rows 8 select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls "
                     "where FormName = 'form'",
                     "close rows"}));
}

TEST_F(FormTextsTest, NullEmptiesAndMinusOneLeaves) {
    for (const char16_t* name : {u"left", u"emptied"})
        form->Adopt(std::make_shared<desk::NotedControl>(*form, "Label", notes, ToUtf8(name) + ".", name));
    notes.clear();
    EXPECT_TRUE(LoadControls("('left', -1, '-1', '-1', 9, '-1'), ('emptied', -1, null, null, 9, null)"));
    EXPECT_EQ(notes, (Notes{"emptied.Caption=", "emptied.ToolTipText="}));
}

TEST_F(FormTextsTest, AFailureIsOneShortNoticeAndEndsTheRows) {
    auto& label = form->Add<forms::Label>(u"label");
    const std::string size = desk::Short("Invalid property value: Size", 380);
    const Table<const char*, std::string, const char16_t*> cases = {
        {"('label', -1, 'early', 'F', null, '-1')", desk::Short("Invalid use of Null", 94), u"early F "},
        {"('label', -1, 'early', 'F', 0, 'tip')", size, u"early F "},
        {"('label', -1, 'early', 'F', 2161, 'tip')", size, u"early F "},
        {"('label', 0, 'early', 'F', 9, 'tip')",
         desk::Short("Control array element 'label(0)' doesn't exist", 340), u"  "},
        {"('none', -1, '-1', '-1', 9, '-1')", desk::Short("Control 'none' not found", 730), u"  "},
        {"('label', 40000, '-1', '-1', 9, '-1')", desk::Short("Overflow", 6), u"  "}};
    for (const auto& [row, notice, texts] : cases) {
        label.Caption = u"";
        label.Font->Name = u"";
        EXPECT_FALSE(LoadControls(row + std::string(", ('label', -1, 'late', '-1', 9, 'late')")));
        EXPECT_EQ(computer.Boxes(), Notes{notice});
        EXPECT_EQ(label.Caption() + u" " + label.Font->Name() + u" " + label.ToolTipText(), texts) << row;
        EXPECT_EQ(computer.Calls().size(), 2U) << "closed after a failure";
    }
}

TEST_F(FormTextsTest, TheFormsCaptionIsExpandedAndTheLastRowStands) {
    const auto texts = [&] {
        return form->Caption() + u"|" + form->Font->Name() + u"|" + Value(form->Font->Size()).ToText();
    };
    EXPECT_TRUE(LoadForm()) << "no row";
    EXPECT_EQ(texts(), u"|MS Sans Serif|8.25");
    databases.Add(u"a",
                  "insert into tForms values ('other', 'other', 'O', 7), ('form', 'first', 'A', 8),"
                  " ('form', 'One & %CR & %ST & Two', 'B', 9.75)");
    computer.Calls();
    EXPECT_TRUE(LoadForm());
    EXPECT_EQ(texts(), u"One\rTwo|B|9.75");
    EXPECT_EQ(computer.Calls(),
              (Notes{"open a read-only",
                     "rows 8 select Caption,FontName,FontSize from tForms where ObjectName = 'form'",
                     "close rows"}));
    form->isMdi = true;
    databases.Add(u"a", "update tForms set Caption = '-1', FontName = 'C', FontSize = 10");
    EXPECT_TRUE(LoadForm());
    EXPECT_EQ(texts(), u"-1|B|9.75") << "a form of forms takes the caption alone";
    databases.Add(u"a", "update tForms set Caption = null");
    EXPECT_FALSE(LoadForm());
    EXPECT_EQ(computer.Boxes(), Notes{desk::Short("Invalid use of Null", 94)});
}

}  // namespace
