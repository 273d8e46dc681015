// What the tables say of a form goes to its controls: their texts and fonts, and their pictures.
#include <gtest/gtest.h>

#include <sstream>

#include "harness/Cases.h"
#include "harness/Desk.h"
#include "language/FormTexts.h"
#include "pictures/comPicture.h"

using namespace horalink;
using namespace platform;
using desk::Notes, desk::Short;

namespace {

// A control of any type, which notes what is done to it and to whatever it gives out.
struct NotedControl : forms::Control {
    NotedControl(forms::Form& form, std::string_view typeName, Notes& toWrite, std::string path,
                 Text name = {}, std::int16_t index = -1)
        : Control(form, std::move(name), index),
          type{typeName, {}},
          notes(toWrite),
          prefix(std::move(path)) {}
    const ClassDescription& Class() const override { return type; }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        if (member == "Width") return Width();
        if (member == "Height") return Height();
        if (member == "Count") return 2;
        std::string given;
        for (const Value& argument : arguments) given += (given.empty() ? "" : ",") + Described(argument);
        const std::string name = prefix + std::string(member);
        if (kind == InvokeKind::PropertyGet)
            return std::make_shared<NotedControl>(Owner(), "", notes, name + given + ".");
        return notes.push_back(name + "=" + given), Value();
    }
    static std::string Described(const Value& value) {
        if (!value.IsObject()) return ToUtf8(value.ToText());
        const auto picture = std::dynamic_pointer_cast<forms::Picture>(value.ToObject());
        return picture ? picture->Content() : "object";
    }

    const ClassDescription type;
    Notes& notes;
    const std::string prefix;
};

struct FormContentTest : testing::Test {
    FormContentTest() {
        databases.Add(u"a", R"(
            create table tControls (ObjectName, [Index], Caption, FontName, FontSize, ToolTipText, FormName);
            create table tPicture (ObjectName, [Index], FileName, BasePanel, BasePanelIndex, FormName))");
        // The set 0 names no other pictures.
        databases.Add(u"common", R"(create table PictureFileName (ID, DefaultName, FileName);
                                    insert into PictureFileName values (0, 'one', 'two'))");
        computer.pictures.files = {{u"D\\one", "1"}, {u"D\\two", "2"}, {u"D\\bad", ""}, {u"D\\-1", "no"}};
        computer.boxes.whileOpen = [this] { notes.push_back("notice"); };
    }
    std::shared_ptr<forms::Form> NewForm() {
        return std::make_shared<forms::Form>(u"form", computer.timers, computer.toolkit);
    }
    void Add(const char16_t* name, const char* type, const std::string& path, std::int16_t index = -1,
             float width = 0) {
        const auto control = std::make_shared<NotedControl>(*form, type, notes, path, name, index);
        control->Place(1, 2, width, width / 2);
        form->Adopt(control);
    }
    // Puts rows of the form in place of those of a table, after one of another form, and forgets the notes.
    void Fill(const std::string& table, const std::string& rows) {
        databases.Add(u"a", "delete from " + table + "; insert into " + table +
                                " select *, 'other' from (values " + rows + ") limit 1; insert into " +
                                table + " select *, 'form' from (values " + rows + ")");
        notes.clear();
    }
    bool LoadControls(const std::string& rows) {
        Fill("tControls", rows);
        return LoadControlsText(computer.boxes, *form, *databases.OpenDatabase(u"a", true));
    }
    // What was done to the controls, in order.
    std::string LoadPictures(bool succeeds, const std::string& rows) {
        const auto addIn = databases.OpenDatabase(u"a", false),
                   common = databases.OpenDatabase(u"common", true);
        Fill("tPicture", rows);
        EXPECT_EQ(succeeds, LoadFormPictures(computer.services, *form, addIn.get(), common.get(), 0, u"D\\"));
        std::string done;
        for (const std::string& note : notes) done += note + " ";
        return done;
    }
    Notes notes;
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    std::shared_ptr<forms::Form> form = NewForm();
};

TEST_F(FormContentTest, EachTypeTakesItsFontInItsOwnWay) {
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
            form = NewForm();
            Add(u"control", type.c_str(), "", 3);
            EXPECT_TRUE(LoadControls("('Control', 3, 'C & %CR', 'F', 9, 'T')"));
            Notes expected{"Caption=C & %CR"};
            std::istringstream paths(fonts);
            for (std::string path; paths >> path;) {
                expected.insert(expected.end(), {path + "Name=F", path + "Size=9"});
                if (*charset) expected.push_back((path == "Font" ? "Font." : path) + "Charset=" + charset);
            }
            expected.push_back("ToolTipText=T");
            EXPECT_EQ(notes, expected) << type;
        }
    }
    Add(u"left", "Label", "left."), Add(u"emptied", "Label", "emptied.");
    EXPECT_TRUE(LoadControls("('left', -1, '-1', '-1', 9, '-1'), ('emptied', -1, null, null, 9, null)"));
    EXPECT_EQ(notes, (Notes{"emptied.Caption=", "emptied.ToolTipText="})) << "minus one leaves the text";
}

TEST_F(FormContentTest, EachControlTakesThePictureInItsOwnWayUntilOneFails) {
    form->Width = 7110;
    form->Height = 4365;
    Add(u"image", "Image", "image."), Add(u"image", "Image", "image2.", 2);
    Add(u"tree", "SSTree", "tree."), Add(u"list", "SSListBar", "list.");
    Add(u"panel", "SSPanel", "panel.", -1, 30), Add(u"panel", "PictureBox", "panel1.", 1, 31);
    Add(u"frame", "Frame", "frame.", -1, 32);
    const std::string invalid = Short("Invalid picture", 481), null = Short("Invalid use of Null", 94);
    // Rows, what is done, and the notice if one fails; then there are no rows after it.
    const Table<std::string, std::string, std::string> cases = {
        {"('image', -1, '-1', 'none', -1), ('image', -1, 'none', 'none', -1)", "", ""},
        {"('IMAGE', 2, 'two', 'me', -1), ('image', -1, 'one', 'frame', -1)",
         "image2.Move=0,0,7110,4365 image2.Picture=2 image.Move=0,0,32,16 image.Picture=1 ", ""},
        {"('image', -1, 'one', 'Panel', 1), ('image', 2, 'two', 'me', -1)",
         "panel1.Visible=False image.Move=0,0,31,15.5 image.Picture=1 panel1.Visible=True "
         "image2.Move=0,0,7110,4365 image2.Picture=2 ",
         ""},
        {"('tree', -1, 'one', 'none', -1), ('list', -1, 'two', 'none', -1)",
         "tree.PictureBackground=1 list.PictureBackground=2 ", ""},
        {"('none', -1, '-1', 'me', -1)", "notice ", Short("Control 'none' not found", 730)},
        {"('image', -1, 'one', 'Me', -1)", "notice ", Short("Control 'Me' not found", 730)},
        {"('image', -1, null, 'me', -1)", "notice ", null},
        {"('tree', -1, 'bad', 'me', -1)", "notice ", invalid},
        {"('image', -1, 'bad', 'panel', 1)",
         "panel1.Visible=False image.Move=0,0,31,15.5 notice panel1.Visible=True ", invalid}};
    for (const auto& [rows, done, notice] : cases) {
        const bool succeeds = notice.empty();
        const std::string next = succeeds ? "" : ", ('image', -1, 'one', 'me', -1)";
        EXPECT_EQ(LoadPictures(succeeds, rows + next), done);
        EXPECT_EQ(computer.Boxes(), succeeds ? Notes() : Notes{notice});
    }
    EXPECT_FALSE(LoadFormPictures(computer.services, *form, nullptr, nullptr, 0, u"D\\"));
    EXPECT_EQ(computer.Boxes(), Notes{Short("Object variable is not set", 91)});
}

}  // namespace
