#include "language/FormTexts.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Joined.h"
#include "NotedControl.h"
#include "Table.h"

using namespace horalink;
using namespace platform;
using desk::Notes, desk::Short;

namespace {

// A form of either kind that is painted anew by a note.
struct NotedForm : forms::Form, forms::Toolkit {
    NotedForm(Scheduler& scheduler, Notes& toWrite) : Form(u"form", scheduler, *this), notes(toWrite) {
        Show();
    }
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
    }
    bool LoadForm(const std::string& sql) {
        databases.Add(u"a", sql);
        computer.Calls();
        return LoadFormText(computer.boxes, *form, *databases.OpenDatabase(u"a", true));
    }
    bool LoadControls(const std::string& rows) {
        databases.Add(
            u"a", "delete from tControls; insert into tControls values ('other', 'none', 0, '', '', 0, '')" +
                      desk::RowsOfForm(rows));
        notes.clear(), computer.Calls();
        return LoadControlsText(computer.boxes, *form, *databases.OpenDatabase(u"a", true));
    }
    void Add(const char16_t* name, const char* type, const std::string& path, std::int16_t index) {
        form->Adopt(std::make_shared<desk::NotedControl>(*form, type, notes, path, name, index));
    }
    Notes notes;
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    std::shared_ptr<NotedForm> form = std::make_shared<NotedForm>(computer.timers, notes);
};

TEST_F(FormTextsTest, EachTypeTakesItsFontInItsOwnWay) {
    // Fonts by their paths, then a character set.
    const Table<std::string, std::string, const char*> cases = {
        {"ComboBox ListBox FileListBox DriveListBox DirListBox", "Font", ""},
        {"CommandButton Label MSFlexGrid Frame OptionButton vsFlexArray TextBox", "Font", "204"},
        {"SSCommand SSCheck SSOption SSFrame SSRibbon SSPanel", "Font", "128"},
        {"SSTree ListView TreeView SSDBDropDown SSTab", "Font.", "128"},
        {"CheckBox PDQComm StatusBar RichTextBox Menu Calendar label List SSP", "Font.", ""},
        {"SSListBar", "CaptionFont.", ""},
        {"SSDBGrid", "HeadFont. PageFooterFont. PageHeaderFont. Font. StyleSets0.Font. StyleSets1.Font.",
         "204"},
        {"SSDBCombo", "Font. HeadFont. StyleSets0.Font. StyleSets1.Font.", "128"}};
    for (const auto& [types, fonts, charset] : cases) {
        std::istringstream words(types);
        for (std::string type; words >> type;) {
            form = std::make_shared<NotedForm>(computer.timers, notes);
            Add(u"control", type.c_str(), "", 3);
            EXPECT_TRUE(LoadControls("('Control', 3, 'C & %CR', 'F', 9, 'T')"));
            Notes expected{"Caption=C & %CR"};
            std::istringstream paths(fonts);
            for (std::string path; paths >> path;) {
                expected.insert(expected.end(), {path + "Name=F", path + "Size=9"});
                if (*charset) expected.push_back((path == "Font" ? "Font." : path) + "Charset=" + charset);
            }
            if (type == "SSTab") expected.push_back("Refresh");
            expected.push_back("ToolTipText=T");
            EXPECT_EQ(notes, expected) << type;
        }
    }
    EXPECT_EQ(computer.Calls(),
              (Notes{"open a read-only",
                     "rows 8 select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from "
                     "tControls where FormName = 'form'",
                     "close rows"}));
}

TEST_F(FormTextsTest, NullEmptiesAndMinusOneLeaves) {
    Add(u"left", "Label", "left.", -1), Add(u"emptied", "Label", "emptied.", -1);
    EXPECT_TRUE(LoadControls("('left', -1, '-1', '-1', 9, '-1'), ('emptied', -1, null, null, 9, null)"));
    EXPECT_EQ(notes, (Notes{"emptied.Caption=", "emptied.ToolTipText="}));
}

TEST_F(FormTextsTest, AFailureIsOneShortNoticeAndEndsTheRows) {
    auto& label = form->Add<forms::Label>(u"label");
    const std::string size = Short("Invalid property value: Size", 380);
    const Table<const char*, std::string, const char*> cases = {
        {"('label', -1, 'early', 'F', null, '-1')", Short("Invalid use of Null", 94), "early|F||"},
        {"('label', -1, 'early', 'F', 0, 'tip')", size, "early|F||"},
        {"('label', 0, 'early', 'F', 9, 'tip')", Short("Control array element 'label(0)' doesn't exist", 340),
         "|||"},
        {"('none', -1, '-1', '-1', 9, '-1')", Short("Control 'none' not found", 730), "|||"},
        {"('label', 40000, '-1', '-1', 9, '-1')", Short("Overflow", 6), "|||"}};
    for (const auto& [row, notice, texts] : cases) {
        label.Caption = u"";
        label.Font->Name = u"";
        EXPECT_FALSE(LoadControls(row + std::string(", ('label', -1, 'late', '-1', 9, 'late')")));
        EXPECT_EQ(computer.Boxes(), Notes{notice});
        EXPECT_EQ(Joined(label.Caption(), label.Font->Name(), label.ToolTipText()), texts) << row;
        EXPECT_EQ(computer.Calls().size(), 2U) << "closed after a failure";
    }
}

TEST_F(FormTextsTest, TheFormsCaptionIsExpandedAndTheLastRowStands) {
    const auto texts = [&] { return Joined(form->Caption(), form->Font->Name(), form->Font->Size()); };
    EXPECT_TRUE(LoadForm("")) << "no row";
    EXPECT_EQ(texts(), "|MS Sans Serif|8.25|");
    EXPECT_TRUE(
        LoadForm("insert into tForms values ('other', 'other', 'O', 7), ('form', 'first', 'A', 8),"
                 " ('form', 'One & %CR & %ST & Two', 'B', 9.75)"));
    EXPECT_EQ(texts(), "One\rTwo|B|9.75|");
    EXPECT_EQ(computer.Calls(),
              (Notes{"open a read-only",
                     "rows 8 select Caption,FontName,FontSize from tForms where ObjectName = 'form'",
                     "close rows"}));
    form->isMdi = true;
    EXPECT_TRUE(LoadForm("update tForms set Caption = '-1', FontName = 'C', FontSize = 10"));
    EXPECT_EQ(texts(), "-1|B|9.75|") << "a form of forms takes the caption alone";
    EXPECT_FALSE(LoadForm("update tForms set Caption = null"));
    EXPECT_EQ(computer.Boxes(), Notes{Short("Invalid use of Null", 94)});
}

}  // namespace
