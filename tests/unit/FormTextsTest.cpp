#include "language/FormTexts.h"

#include <gtest/gtest.h>

#include "Fakes.h"

using namespace horalink;
using namespace platform;
using Notes = std::vector<std::string>;

namespace {

// A control of any type, which notes what is written to it and to whatever it gives out.
struct NotedObject : forms::Control {
    NotedObject(forms::Form& form, std::string_view type, Notes& toWrite, std::string path = "")
        : Control(form, u"control", -1), owner(form), description{type, {}}, notes(toWrite), prefix(path) {}
    const ClassDescription& Class() const override { return description; }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        if (member == "Count") return 2;
        const std::string name = prefix + std::string(member);
        const std::string argument = arguments.empty() ? "" : ToUtf8(arguments[0].ToText());
        if (kind == InvokeKind::PropertyGet)
            return ObjectRef(std::make_shared<NotedObject>(owner, "", notes, name + argument + "."));
        return notes.push_back(name + "=" + argument), Value();
    }
    forms::Form& owner;
    ClassDescription description;
    Notes& notes;
    std::string prefix;
};

struct FormTextsTest : testing::Test {
    fakes::Row ControlRow(Value caption, Value fontName, Value fontSize, Value toolTip) {
        return {{u"ObjectName", u"control"}, {u"Index", -1},          {u"Caption", caption},
                {u"FontName", fontName},     {u"FontSize", fontSize}, {u"ToolTipText", toolTip}};
    }
    bool Load(fakes::Rows rows) {
        database.answers
            [u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls "
             u"where FormName = 'form'"] = std::move(rows);
        boxes.shown.clear();
        return LoadControlsText(boxes, *form, database);
    }
    fakes::FakeTime<Scheduler> scheduler;
    fakes::FakeToolkit toolkit;
    fakes::FakeBoxes boxes;
    fakes::FakeDatabase database;
    std::shared_ptr<forms::Form> form = std::make_shared<forms::Form>(u"form", scheduler, toolkit);
};

TEST_F(FormTextsTest, EachTypeTakesItsFontInItsOwnWay) {
    const std::pair<const char*, Notes> cases[] = {
        {"ComboBox", {"FontName=F", "FontSize=9"}},
        {"Label", {"FontName=F", "FontSize=9", "Font.Charset=204"}},
        {"SSPanel", {"FontName=F", "FontSize=9", "Font.Charset=128"}},
        {"TreeView", {"Font.Name=F", "Font.Size=9", "Font.Charset=128"}},
        {"CheckBox", {"Font.Name=F", "Font.Size=9"}},
        {"label", {"Font.Name=F", "Font.Size=9"}},
        {"SSListBar", {"CaptionFont.Name=F", "CaptionFont.Size=9"}},
        {"SSDBCombo",
         {"Font.Name=F", "Font.Size=9", "Font.Charset=128", "HeadFont.Name=F", "HeadFont.Size=9",
          "HeadFont.Charset=128", "StyleSets0.Font.Name=F", "StyleSets0.Font.Size=9",
          "StyleSets0.Font.Charset=128", "StyleSets1.Font.Name=F", "StyleSets1.Font.Size=9",
          "StyleSets1.Font.Charset=128"}},
        {"SSDBGrid", {"HeadFont.Name=F", "Font.Name=F", "StyleSets1.Font.Charset=204"}}};
    for (const auto& [type, expected] : cases) {
        Notes notes;
        form = std::make_shared<forms::Form>(u"form", scheduler, toolkit);
        form->Adopt(std::make_shared<NotedObject>(*form, type, notes));
        EXPECT_TRUE(Load({ControlRow(u"-1", u"F", 9, u"-1")}));
        // Of a grid, with its heads, footer and style sets, three notes stand for all.
        if (notes.size() == 18) notes = {notes[0], notes[9], notes[17]};
        EXPECT_EQ(notes, expected) << type;
    }
}

TEST_F(FormTextsTest, NullEmptiesAndMinusOneLeaves) {
    auto& label = form->Add<forms::Label>(u"control");
    label.Caption = u"design";
    label.ToolTipText = u"tip";
    EXPECT_TRUE(Load({ControlRow(u"-1", u"-1", Null{}, u"-1")}));
    EXPECT_EQ(label.Caption() + label.ToolTipText(), u"designtip");
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
    array[u"Index"] = 0;
    noField.erase(u"ToolTipText");
    const std::pair<fakes::Row, Text> cases[] = {
        {ControlRow(u"early", u"F", Null{}, u"-1"), u"early"}, {noField, u"late"},
        {ControlRow(u"early", u"F", u"big", u"-1"), u"early"}, {unknown, u""},
        {ControlRow(u"early", u"F", 0, u"-1"), u"early"},      {array, u""}};
    for (const auto& [row, caption] : cases) {
        label.Caption = u"";
        EXPECT_FALSE(Load({row, good}));
        EXPECT_EQ(boxes.shown.size(), 1U);
        EXPECT_EQ(label.Caption(), caption);
    }
}

TEST_F(FormTextsTest, TheFormsCaptionIsExpandedAndTheLastRowStands) {
    const auto load = [&](fakes::Rows rows) {
        database.answers[u"select Caption,FontName,FontSize from tForms where ObjectName = 'form'"] = rows;
        return LoadFormText(boxes, *form, database);
    };
    const auto row = [](Value caption, Value name, Value size) {
        return fakes::Row{{u"Caption", caption}, {u"FontName", name}, {u"FontSize", size}};
    };
    EXPECT_TRUE(load({row(u"first", u"A", 8), row(u"One & %CR & Two", u"B", 9.75)}));
    EXPECT_EQ(form->Caption(), u"One\rTwo");
    EXPECT_EQ(form->Font->Name(), u"B");
    EXPECT_EQ(form->Font->Size(), 9.75F);
    EXPECT_FALSE(load({row(Null{}, u"A", 8)}));
}

}  // namespace
