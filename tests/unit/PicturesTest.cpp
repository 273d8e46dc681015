#include "pictures/comPicture.h"

#include <gtest/gtest.h>

#include "NotedControl.h"
#include "Table.h"

using namespace horalink;
using namespace platform;
using desk::Notes;

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
        computer.pictures.files = {{u"D\\one", "1"}, {u"D\\two", "2"}, {u"D\\bad", ""}};
        form->Width = 7110;
        form->Height = 4365;
        Add(u"image", "Image");
        Add(u"image", "Image", 2);
        Add(u"tree", "SSTree");
        Add(u"list", "SSListBar");
        Add(u"panel", "SSPanel")->Place(1, 2, 30, 20);
        Add(u"panel", "PictureBox", 1)->Place(1, 2, 31, 21);
        Add(u"frame", "Frame")->Place(1, 2, 32, 22);
        computer.boxes.whileOpen = [this] { notes.push_back("notice"); };
    }
    std::shared_ptr<forms::Control> Add(const char16_t* name, const char* type, std::int16_t index = -1) {
        const std::string path = ToUtf8(name) + (index < 0 ? "" : std::to_string(index)) + ".";
        const auto control = std::make_shared<desk::NotedControl>(*form, type, notes, path, name, index);
        form->Adopt(control);
        return control;
    }
    // The rows are those of the form, but for its name.
    bool Load(int set, const std::string& rows) {
        std::string sql =
            "delete from tPicture; insert into tPicture values ('other', 'none', -1, '', '', 0)";
        for (const char c : ", " + rows) sql += c == '(' ? std::string("('form', ") : std::string(1, c);
        databases.Add(u"addin", sql);
        const auto addIn = databases.OpenDatabase(u"addin", false),
                   common = databases.OpenDatabase(u"common", true);
        notes.clear();
        computer.Calls();
        return LoadFormPictures(computer.services, *form, addIn.get(), common.get(),
                                static_cast<std::int16_t>(set), u"D\\");
    }
    Notes notes;
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    std::shared_ptr<forms::Form> form =
        std::make_shared<forms::Form>(u"form", computer.timers, computer.toolkit);
};

TEST_F(PicturesTest, ASetReplacesDefaultNamesAndZeroNever) {
    const auto shown = [](const char* picture) { return Notes{"image.Move=0,0,7110,4365", picture}; };
    const Notes one = shown("image.Picture=1"), two = shown("image.Picture=2");
    // The first row of a key wins, what can't be read falls back, and no file is tried in place of another.
    for (const auto& [set, expected] :
         {std::pair(0, one), {4, Notes{}}, {5, one}, {6, one}, {-7, two}, {3, two}}) {
        EXPECT_TRUE(Load(set, "('image', -1, 'one', 'me', -1)"));
        EXPECT_EQ(notes, expected) << set;
    }
    EXPECT_EQ(computer.Calls(),
              (Notes{"rows 8 Select * From PictureFileName Where  ID = 3", "close rows",
                     "rows 8 select ObjectName,Index,FileName,BasePanel,BasePanelIndex from tPicture where "
                     "FormName = 'form'",
                     "close rows"}));
    databases.Add(u"common", "drop table PictureFileName");
    EXPECT_TRUE(Load(3, "('image', -1, 'one', 'me', -1)"));
    EXPECT_EQ(notes, one);
    EXPECT_EQ(computer.Boxes(), Notes{});
}

TEST_F(PicturesTest, EachControlTakesThePictureInItsOwnWay) {
    const Table<int, const char*, Notes> cases = {
        {0, "('image', -1, '-1', 'none', -1), ('image', -1, 'none', 'none', -1)", {}},
        {0,
         "('IMAGE', 2, 'two', 'me', -1), ('image', -1, 'one', 'frame', -1)",
         {"image2.Move=0,0,7110,4365", "image2.Picture=2", "image.Move=0,0,32,22", "image.Picture=1"}},
        {0,
         "('image', -1, 'one', 'panel', -1)",
         {"panel.Visible=False", "image.Move=0,0,30,20", "image.Picture=1", "panel.Visible=True"}},
        {0,
         "('image', -1, 'one', 'Panel', 1), ('image', 2, 'two', 'me', -1)",
         {"panel1.Visible=False", "image.Move=0,0,31,21", "image.Picture=1", "panel1.Visible=True",
          "image2.Move=0,0,7110,4365", "image2.Picture=2"}},
        {3,
         "('tree', -1, 'one', 'none', -1), ('list', -1, 'two', 'none', -1)",
         {"tree.PictureBackground=1", "list.PictureBackground=2"}}};
    for (const auto& [set, rows, expected] : cases) {
        EXPECT_TRUE(Load(set, rows));
        EXPECT_EQ(notes, expected) << rows;
    }
}

TEST_F(PicturesTest, AFailureIsOneShortNoticeAndEndsTheRows) {
    const std::string noImage = desk::Short("Control array element 'image(1)' doesn't exist", 340),
                      noMe = desk::Short("Control 'me' not found", 730),
                      bad = desk::Short("Invalid picture", 481);
    const Table<const char*, std::string, Notes> cases = {
        {"('none', -1, '-1', 'me', -1)", desk::Short("Control 'none' not found", 730), {"notice"}},
        {"('image', 1, '-1', 'me', -1)", noImage, {"notice"}},
        {"('image', -1, 'one', 'me', 2)", noMe, {"notice"}},
        {"('image', -1, 'one', 'Me', -1)", desk::Short("Control 'Me' not found", 730), {"notice"}},
        {"('image', -1, null, 'me', -1)", desk::Short("Invalid use of Null", 94), {"notice"}},
        {"('tree', -1, 'bad', 'me', -1)", bad, {"notice"}},
        {"('image', -1, 'bad', 'frame', -1)", bad, {"image.Move=0,0,32,22", "notice"}},
        {"('image', -1, 'bad', 'panel', 1)",
         bad,
         {"panel1.Visible=False", "image.Move=0,0,31,21", "notice", "panel1.Visible=True"}}};
    for (const auto& [row, notice, expected] : cases) {
        EXPECT_FALSE(Load(0, row + std::string(", ('image', -1, 'one', 'me', -1)")));
        EXPECT_EQ(notes, expected) << row;
        EXPECT_EQ(computer.Boxes(), Notes{notice});
        EXPECT_EQ(computer.Calls().size(), 3U) << "closed after a failure";
    }
    EXPECT_FALSE(LoadFormPictures(computer.services, *form, nullptr, nullptr, 0, u"D\\"));
    EXPECT_EQ(computer.Boxes(), Notes{desk::Short("Object variable is not set", 91)});
}

}  // namespace
