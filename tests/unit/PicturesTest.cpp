#include <gtest/gtest.h>

#include "Fakes.h"
#include "pictures/comPicture.h"

using namespace horalink;
using namespace platform;
using fakes::Row;

namespace {

// A control of a type that hides while its content changes, or paints its own background.
class TypedControl : public forms::Control {
  public:
    TypedControl(forms::Form& form, Text name, std::string_view type)
        : Control(form, std::move(name), -1), description_{type, CommonMembers()} {
        description_.members.push_back({"PictureBackground",
                                        InvokeKind::PropertyPut,
                                        {{"Value"}},
                                        ValueType::None,
                                        Bind<TypedControl>([](TypedControl& self, Arguments& a) {
                                            self.background =
                                                std::dynamic_pointer_cast<forms::Picture>(a[0].ToObject());
                                        })});
    }
    const ClassDescription& Class() const override { return description_; }
    void Changed() override { history.push_back(Visible); }
    std::vector<bool> history;
    forms::PictureRef background;

  private:
    ClassDescription description_;
};

struct PicturesTest : testing::Test {
    PicturesTest() {
        form.Width = 7110;
        form.Height = 4365;
        computer.files.files = {{u"D\\one.png", "one"}, {u"D\\two.png", "two"}, {u"D\\bad.png", ""}};
    }
    void Rows(std::vector<std::tuple<const char16_t*, const char16_t*, const char16_t*, int>> rows) {
        auto& stored = computer.language->answers[query];
        stored.clear();
        for (const auto& [object, file, base, baseIndex] : rows)
            stored.push_back({{u"ObjectName", Value(object)},
                              {u"Index", Value(-1)},
                              {u"FileName", Value(file)},
                              {u"BasePanel", Value(base)},
                              {u"BasePanelIndex", Value(baseIndex)}});
    }
    void Names(std::int16_t set, fakes::Rows rows) {
        computer.common->answers[u"Select * From PictureFileName Where  ID = " + DecimalText(set)] =
            std::move(rows);
    }
    bool Load(std::int16_t set) {
        return LoadFormPictures(computer.services, form, computer.language.get(), computer.common.get(), set,
                                u"D\\");
    }
    std::string Shown() const { return image.Picture() ? image.Picture()->Content() : ""; }

    static constexpr const char16_t* query =
        u"select ObjectName,Index,FileName,BasePanel,BasePanelIndex from tPicture where FormName = 'form'";
    fakes::Computer computer;
    std::shared_ptr<forms::Form> owner =
        std::make_shared<forms::Form>(u"form", computer.scheduler, computer.toolkit);
    forms::Form& form = *owner;
    forms::Image& image = form.Add<forms::Image>(u"image");
};

TEST_F(PicturesTest, ASetReplacesDefaultNamesAndZeroNever) {
    Rows({{u"image", u"one.png", u"me", -1}});
    Names(0, {{{u"DefaultName", Value(u"one.png")}, {u"FileName", Value(u"two.png")}}});
    Names(3, {{{u"DefaultName", Value(u"ONE.PNG")}, {u"FileName", Value(u"two.png")}},
              {{u"DefaultName", Value(u"one.png")}, {u"FileName", Value(u"bad.png")}}});
    EXPECT_TRUE(Load(0));
    EXPECT_EQ(Shown(), "one");
    EXPECT_EQ(image.Width(), 7110);
    EXPECT_TRUE(Load(3));
    EXPECT_EQ(Shown(), "two") << "the first row of a key wins";
    EXPECT_TRUE(Load(4)) << "a set that can't be read falls back";
    EXPECT_EQ(Shown(), "one");
    Names(5, {{{u"DefaultName", Value(u"one.png")}, {u"FileName", Value(u"missing.png")}}});
    image.Picture = nullptr;
    EXPECT_TRUE(Load(5));
    EXPECT_EQ(Shown(), "") << "the default file is not tried instead";
    EXPECT_TRUE(computer.boxes.shown.empty());
}

TEST_F(PicturesTest, FailuresShowOneNoticeAndStop) {
    const std::vector<std::tuple<const char16_t*, const char16_t*, const char16_t*, int>> faults = {
        {u"none", u"-1", u"me", -1},
        {u"image", u"bad.png", u"me", -1},
        {u"image", u"one.png", u"me", 2},
        {u"image", u"one.png", u"Me", -1}};
    for (const auto& fault : faults) {
        Rows({fault, {u"image", u"one.png", u"me", -1}});
        computer.boxes.shown.clear();
        EXPECT_FALSE(Load(0));
        EXPECT_EQ(computer.boxes.shown.size(), 1U);
        EXPECT_EQ(Shown(), "");
    }
    computer.language->answers.erase(query);
    EXPECT_FALSE(Load(0));
}

TEST_F(PicturesTest, APanelIsHiddenForTheChangeAndShownAgainAlsoAfterAFailure) {
    const auto panel = std::make_shared<TypedControl>(form, u"panel", "SSPanel");
    form.Adopt(panel);
    panel->Place(0, 0, 300, 200);
    panel->history.clear();
    Rows({{u"image", u"one.png", u"panel", -1}});
    EXPECT_TRUE(Load(0));
    EXPECT_EQ(panel->history, (std::vector<bool>{false, true}));
    EXPECT_EQ(image.Width(), 300);
    Rows({{u"image", u"bad.png", u"panel", -1}});
    EXPECT_FALSE(Load(0));
    EXPECT_TRUE(panel->Visible());
}

TEST_F(PicturesTest, ATreeTakesTheFileAsItsRowNamesIt) {
    const auto tree = std::make_shared<TypedControl>(form, u"tree", "SSTree");
    form.Adopt(tree);
    Rows({{u"tree", u"one.png", u"me", -1}});
    Names(3, {{{u"DefaultName", Value(u"one.png")}, {u"FileName", Value(u"two.png")}}});
    EXPECT_TRUE(Load(3));
    EXPECT_EQ(tree->background->Content(), "one");
    EXPECT_EQ(tree->Width(), 0);
}

}  // namespace
