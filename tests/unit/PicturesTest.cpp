#include <gtest/gtest.h>

#include "Fakes.h"
#include "pictures/comPicture.h"

using namespace horalink;
using namespace platform;

namespace {

// A control that notes whether it is seen, at each change of it.
struct Panel : forms::Control {
    explicit Panel(forms::Form& form)
        : Control(form, u"panel", -1), description{"SSPanel", CommonMembers()} {}
    const ClassDescription& Class() const override { return description; }
    void Changed() override { history.push_back(Visible); }
    std::vector<bool> history;
    ClassDescription description;
};

struct PicturesTest : testing::Test {
    PicturesTest() {
        form->Width = 7110;
        form->Height = 4365;
        computer.files.files = {{u"D\\one.png", "one"}, {u"D\\two.png", "two"}, {u"D\\bad.png", ""}};
    }
    struct Picture {
        const char16_t *object, *file, *base = u"me";
        int baseIndex = -1;
    };
    bool Load(std::int16_t set, std::vector<Picture> pictures) {
        auto& rows = computer.language->answers
                         [u"select ObjectName,Index,FileName,BasePanel,BasePanelIndex "
                          u"from tPicture where FormName = 'form'"];
        rows.clear();
        for (const auto& [object, file, base, baseIndex] : pictures)
            rows.push_back({{u"ObjectName", object},
                            {u"Index", -1},
                            {u"FileName", file},
                            {u"BasePanel", base},
                            {u"BasePanelIndex", baseIndex}});
        computer.boxes.shown.clear();
        return LoadFormPictures(computer.services, *form, computer.language.get(), computer.common.get(), set,
                                u"D\\");
    }
    void Names(std::int16_t set, std::vector<std::pair<const char16_t*, const char16_t*>> names) {
        auto& rows =
            computer.common->answers[u"Select * From PictureFileName Where  ID = " + DecimalText(set)];
        for (const auto& [key, file] : names) rows.push_back({{u"DefaultName", key}, {u"FileName", file}});
    }
    std::string Shown() const { return image.Picture() ? image.Picture()->Content() : ""; }

    fakes::Computer computer;
    std::shared_ptr<forms::Form> form =
        std::make_shared<forms::Form>(u"form", computer.scheduler, computer.toolkit);
    forms::Image& image = form->Add<forms::Image>(u"image");
};

TEST_F(PicturesTest, ASetReplacesDefaultNamesAndZeroNever) {
    Names(0, {{u"one.png", u"two.png"}});
    Names(3, {{u"ONE.PNG", u"two.png"}, {u"one.png", u"bad.png"}});
    Names(5, {{u"one.png", u"missing.png"}});
    // The first row of a key wins, a set that can't be read falls back, and no file is tried in place of one.
    for (const auto& [set, content] : {std::pair(0, "one"), {3, "two"}, {4, "one"}, {5, ""}}) {
        image.Picture = nullptr;
        EXPECT_TRUE(Load(static_cast<std::int16_t>(set), {{u"image", u"one.png"}}));
        EXPECT_EQ(Shown(), content) << set;
        EXPECT_TRUE(computer.boxes.shown.empty());
    }
    EXPECT_EQ(image.Width(), 7110);
}

TEST_F(PicturesTest, FailuresShowOneNoticeAndStop) {
    const Picture faults[] = {{u"none", u"-1"},
                              {u"image", u"bad.png"},
                              {u"image", u"one.png", u"me", 2},
                              {u"image", u"one.png", u"Me"}};
    for (const Picture& fault : faults) {
        EXPECT_FALSE(Load(0, {fault, {u"image", u"one.png"}}));
        EXPECT_EQ(computer.boxes.shown.size(), 1U);
        EXPECT_EQ(Shown(), "");
    }
}

TEST_F(PicturesTest, APanelIsHiddenForTheChangeAndShownAgainAfterAFailuresNotice) {
    const auto panel = std::make_shared<Panel>(*form);
    form->Adopt(panel);
    panel->Place(0, 0, 300, 200);
    panel->history.clear();
    EXPECT_TRUE(Load(0, {{u"image", u"one.png", u"panel"}}));
    EXPECT_EQ(panel->history, (std::vector{false, true}));
    EXPECT_EQ(image.Width(), 300);
    computer.boxes.whileOpen = [&] { EXPECT_FALSE(panel->Visible()); };
    EXPECT_FALSE(Load(0, {{u"image", u"bad.png", u"panel"}}));
    EXPECT_EQ(computer.boxes.shown.size(), 1U);
    EXPECT_TRUE(panel->Visible());
}

}  // namespace
