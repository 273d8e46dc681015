#include <gtest/gtest.h>

#include "Fakes.h"
#include "language/FormTexts.h"

using namespace horalink;
using namespace platform;

namespace {

// A control of any type, which notes what is written to it and to whatever it gives out.
class NotedObject : public Object {
  public:
    NotedObject(std::vector<std::string>& notes, std::string prefix, int styleSets)
        : notes_(notes), prefix_(std::move(prefix)), styleSets_(styleSets) {}
    const ClassDescription& Class() const override {
        static const ClassDescription description{"noted", {}};
        return description;
    }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        const std::string name = prefix_ + std::string(member);
        if (kind == InvokeKind::PropertyGet && member == "Count") return styleSets_;
        if (kind == InvokeKind::PropertyGet)
            return std::make_shared<NotedObject>(
                notes_, name + (arguments.empty() ? "" : ToUtf8(arguments[0].ToText())) + ".", styleSets_);
        notes_.push_back(name + "=" + ToUtf8(arguments[0].ToText()));
        return Value();
    }

  private:
    std::vector<std::string>& notes_;
    std::string prefix_;
    int styleSets_;
};

class NotedControl : public forms::Control {
  public:
    NotedControl(forms::Form& form, std::string_view type, std::vector<std::string>& notes, int styleSets)
        : Control(form, u"control", -1), description_{type, {}}, noted_(notes, "", styleSets) {}
    const ClassDescription& Class() const override { return description_; }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        return noted_.Invoke(member, kind, arguments);
    }

  private:
    ClassDescription description_;
    NotedObject noted_;
};

struct FormTextsTest : testing::Test {
    using Notes = std::vector<std::string>;
    fakes::Row ControlRow(Value caption, Value fontName, Value fontSize, Value toolTip) {
        return {{u"ObjectName", u"control"}, {u"Index", Value(-1)},   {u"Caption", caption},
                {u"FontName", fontName},     {u"FontSize", fontSize}, {u"ToolTipText", toolTip}};
    }
    bool Load(fakes::Rows rows) {
        database.answers[controlsQuery] = std::move(rows);
        return LoadControlsText(boxes, *form, database);
    }
    Notes NotesOf(std::string_view type, int styleSets = 0) {
        Notes notes;
        form = std::make_shared<forms::Form>(u"form", scheduler, toolkit);
        form->Adopt(std::make_shared<NotedControl>(*form, type, notes, styleSets));
        EXPECT_TRUE(Load({ControlRow(u"-1", u"F", 9, u"-1")}));
        return notes;
    }
    static constexpr const char16_t* controlsQuery =
        u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls where FormName = "
        u"'form'";
    static constexpr const char16_t* formsQuery =
        u"select Caption,FontName,FontSize from tForms where ObjectName = 'form'";
    fakes::FakeScheduler scheduler;
    fakes::NoToolkit toolkit;
    fakes::FakeBoxes boxes;
    fakes::FakeDatabase database;
    std::shared_ptr<forms::Form> form = std::make_shared<forms::Form>(u"form", scheduler, toolkit);
};

TEST_F(FormTextsTest, EachTypeTakesItsFontInItsOwnWay) {
    const std::vector<std::pair<const char*, Notes>> cases = {
        {"ComboBox", {"FontName=F", "FontSize=9"}},
        {"Label", {"FontName=F", "FontSize=9", "Font.Charset=204"}},
        {"SSPanel", {"FontName=F", "FontSize=9", "Font.Charset=128"}},
        {"TreeView", {"Font.Name=F", "Font.Size=9", "Font.Charset=128"}},
        {"SSTab", {"Font.Name=F", "Font.Size=9", "Font.Charset=128"}},
        {"CheckBox", {"Font.Name=F", "Font.Size=9"}},
        {"label", {"Font.Name=F", "Font.Size=9"}},
        {"Box", {"Font.Name=F", "Font.Size=9"}},
        {"SSListBar", {"CaptionFont.Name=F", "CaptionFont.Size=9"}},
        {"SSDBCombo",
         {"Font.Name=F", "Font.Size=9", "Font.Charset=128", "HeadFont.Name=F", "HeadFont.Size=9",
          "HeadFont.Charset=128"}},
    };
    for (const auto& [type, notes] : cases) EXPECT_EQ(NotesOf(type), notes) << type;
    const Notes grid = NotesOf("SSDBGrid", 2);
    ASSERT_EQ(grid.size(), 18U);
    EXPECT_EQ(grid[0], "HeadFont.Name=F");
    EXPECT_EQ(grid[9], "Font.Name=F");
    EXPECT_EQ(grid[17], "StyleSets1.Font.Charset=204");
}

TEST_F(FormTextsTest, NullEmptiesAndMinusOneLeaves) {
    auto& label = form->Add<forms::Label>(u"control");
    label.Caption = u"design";
    label.ToolTipText = u"tip";
    EXPECT_TRUE(Load({ControlRow(u"-1", u"-1", Null{}, u"-1")}));
    EXPECT_EQ(label.Caption(), u"design");
    EXPECT_TRUE(Load({ControlRow(u"One & %CR & Two", Null{}, Null{}, Null{})}));
    EXPECT_EQ(label.Caption(), u"One & %CR & Two") << "tokens stay as they are";
    EXPECT_EQ(label.ToolTipText(), u"");
    EXPECT_EQ(label.Font->Name(), u"MS Sans Serif");
}

TEST_F(FormTextsTest, AFailureIsOneNoticeAndEndsTheRows) {
    auto& label = form->Add<forms::Label>(u"control");
    const auto good = ControlRow(u"late", u"-1", 9, u"-1");
    auto unknown = good, array = good, noField = good;
    unknown[u"ObjectName"] = u"none";
    array[u"Index"] = Value(0);
    noField.erase(u"ToolTipText");
    for (const auto& [row, caption] :
         std::vector<std::pair<fakes::Row, Text>>{{unknown, u""},
                                                  {array, u""},
                                                  {ControlRow(u"early", u"F", Null{}, u"-1"), u"early"},
                                                  {ControlRow(u"early", u"F", 0, u"-1"), u"early"},
                                                  {ControlRow(u"early", u"F", u"big", u"-1"), u"early"},
                                                  {noField, u"late"}}) {
        label.Caption = u"";
        boxes.shown.clear();
        EXPECT_FALSE(Load({row, good}));
        ASSERT_EQ(boxes.shown.size(), 1U);
        EXPECT_EQ(label.Caption(), caption);
    }
}

TEST_F(FormTextsTest, TheFormsCaptionIsExpandedAndTheLastRowStands) {
    const auto row = [](Value caption, Value name, Value size) {
        return fakes::Row{{u"Caption", caption}, {u"FontName", name}, {u"FontSize", size}};
    };
    database.answers[formsQuery] = {row(u"first", u"A", 8), row(u"One & %CR & Two", u"B", 9.75)};
    EXPECT_TRUE(LoadFormText(boxes, *form, database));
    EXPECT_EQ(form->Caption(), u"One\rTwo");
    EXPECT_EQ(form->Font->Name(), u"B");
    EXPECT_EQ(form->Font->Size(), 9.75F);
    database.answers[formsQuery] = {row(Null{}, u"A", 8)};
    EXPECT_FALSE(LoadFormText(boxes, *form, database));
    database.answers[formsQuery] = {};
    EXPECT_TRUE(LoadFormText(boxes, *form, database));
    EXPECT_TRUE(LoadControlsText(boxes, *form, (database.answers[controlsQuery] = {}, database)));
}

}  // namespace
