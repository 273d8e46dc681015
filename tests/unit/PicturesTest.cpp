#include "pictures/comPicture.h"

#include <gtest/gtest.h>

#include "NotedControl.h"
#include "Table.h"

using namespace horalink;
using namespace platform;
using desk::Notes, desk::Short;

namespace {

struct PicturesTest : testing::Test {
    PicturesTest() {
        databases.Add(u"common",
                      "create table PictureFileName (ID, DefaultName, FileName);"
                      "insert into PictureFileName values (0, 'one', 'two'), (3, 'ONE', 'two'),"
                      " (3, 'one', 'bad'), (4, 'one', 'missing'), (5, 'two', 'one'), (5, null, 'x'),"
                      " (5, 'one', 'two'), (-7, 'one', 'two')");
        databases.Add(u"addin",
                      "create table tPicture (FormName, ObjectName, [Index], FileName, BasePanel,"
                      " BasePanelIndex)");
        computer.pictures.files = {{u"D\\one", "1"}, {u"D\\two", "2"}, {u"D\\bad", ""}, {u"D\\-1", "no"}};
        form->Width = 7110;
        form->Height = 4365;
        Add(u"image", "Image"), Add(u"image", "Image", 2), Add(u"tree", "SSTree"), Add(u"list", "SSListBar");
        Add(u"panel", "SSPanel", -1, 30), Add(u"panel", "PictureBox", 1, 31), Add(u"frame", "Frame", -1, 32);
        computer.boxes.whileOpen = [this] { notes.push_back("notice"); };
    }
    void Add(const char16_t* name, const char* type, std::int16_t index = -1, float width = 0) {
        const std::string path = ToUtf8(name) + (index < 0 ? "" : std::to_string(index)) + ".";
        const auto control = std::make_shared<desk::NotedControl>(*form, type, notes, path, name, index);
        control->Place(1, 2, width, width / 2);
        form->Adopt(control);
    }
    // What was done to the controls, in order.
    std::string Load(bool succeeds, int set, const std::string& rows) {
        databases.Add(u"addin",
                      "delete from tPicture; insert into tPicture values ('other', 'none', -1, '', '', 0)" +
                          desk::RowsOfForm(rows));
        const auto addIn = databases.OpenDatabase(u"addin", false),
                   common = databases.OpenDatabase(u"common", true);
        notes.clear(), computer.Calls();
        EXPECT_EQ(succeeds, LoadFormPictures(computer.services, *form, addIn.get(), common.get(),
                                             static_cast<std::int16_t>(set), u"D\\"));
        std::string done;
        for (const std::string& note : notes) done += note + " ";
        return done;
    }
    Notes notes;
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    std::shared_ptr<forms::Form> form =
        std::make_shared<forms::Form>(u"form", computer.timers, computer.toolkit);
};

TEST_F(PicturesTest, ASetReplacesDefaultNamesAndZeroNever) {
    const auto load = [this](int set) { return Load(true, set, "('image', -1, 'one', 'me', -1)"); };
    const std::string one = "image.Move=0,0,7110,4365 image.Picture=1 ",
                      two = "image.Move=0,0,7110,4365 image.Picture=2 ";
    EXPECT_EQ(load(0), one);
    EXPECT_EQ(load(3), two) << "the first row of a key wins";
    EXPECT_EQ(load(-7), two);
    EXPECT_EQ(computer.Calls(),
              (Notes{"rows 8 Select * From PictureFileName Where  ID = -7", "close rows",
                     "rows 8 select ObjectName,Index,FileName,BasePanel,BasePanelIndex from "
                     "tPicture where FormName = 'form'",
                     "close rows"}));
    EXPECT_EQ(load(4), "") << "no file is tried in place of another";
    EXPECT_EQ(load(5) + load(6), one + one) << "what can't be read falls back";
    databases.Add(u"common", "drop table PictureFileName");
    EXPECT_EQ(load(3), one);
    EXPECT_EQ(computer.Boxes(), Notes{});
}

TEST_F(PicturesTest, EachControlTakesThePictureInItsOwnWay) {
    EXPECT_EQ(Load(true, 0, "('image', -1, '-1', 'none', -1), ('image', -1, 'none', 'none', -1)"), "");
    EXPECT_EQ(Load(true, 0, "('IMAGE', 2, 'two', 'me', -1), ('image', -1, 'one', 'frame', -1)"),
              "image2.Move=0,0,7110,4365 image2.Picture=2 image.Move=0,0,32,16 image.Picture=1 ");
    EXPECT_EQ(Load(true, 0, "('image', -1, 'one', 'panel', -1)"),
              "panel.Visible=False image.Move=0,0,30,15 image.Picture=1 panel.Visible=True ");
    EXPECT_EQ(Load(true, 0, "('image', -1, 'one', 'Panel', 1), ('image', 2, 'two', 'me', -1)"),
              "panel1.Visible=False image.Move=0,0,31,15.5 image.Picture=1 panel1.Visible=True "
              "image2.Move=0,0,7110,4365 image2.Picture=2 ");
    EXPECT_EQ(Load(true, 3, "('tree', -1, 'one', 'none', -1), ('list', -1, 'two', 'none', -1)"),
              "tree.PictureBackground=1 list.PictureBackground=2 ");
}

TEST_F(PicturesTest, AFailureIsOneShortNoticeAndEndsTheRows) {
    const Table<const char*, std::string, std::string> cases = {
        {"('none', -1, '-1', 'me', -1)", "", Short("Control 'none' not found", 730)},
        {"('image', 1, '-1', 'me', -1)", "", Short("Control array element 'image(1)' doesn't exist", 340)},
        {"('image', -1, 'one', 'me', 2)", "", Short("Control 'me' not found", 730)},
        {"('image', -1, 'one', 'Me', -1)", "", Short("Control 'Me' not found", 730)},
        {"('image', -1, null, 'me', -1)", "", Short("Invalid use of Null", 94)},
        {"('tree', -1, 'bad', 'me', -1)", "", Short("Invalid picture", 481)},
        {"('image', -1, 'bad', 'frame', -1)", "image.Move=0,0,32,16 ", Short("Invalid picture", 481)}};
    for (const auto& [row, done, notice] : cases) {
        EXPECT_EQ(Load(false, 0, row + std::string(", ('image', -1, 'one', 'me', -1)")), done + "notice ");
        EXPECT_EQ(computer.Boxes(), Notes{notice});
        EXPECT_EQ(computer.Calls().size(), 3U) << "closed after a failure";
    }
    EXPECT_EQ(Load(false, 0, "('image', -1, 'bad', 'panel', 1)"),
              "panel1.Visible=False image.Move=0,0,31,15.5 notice panel1.Visible=True ");
    computer.Boxes();
    EXPECT_FALSE(LoadFormPictures(computer.services, *form, nullptr, nullptr, 0, u"D\\"));
    EXPECT_EQ(computer.Boxes(), Notes{Short("Object variable is not set", 91)});
}

}  // namespace
