#include "platform/desktop/qt/QtPictureFiles.h"

#include <gtest/gtest.h>

#include "../unit/ErrorOf.h"
#include "../unit/Table.h"
#include "../unit/TemporaryDirectory.h"

namespace platform {
namespace {

TEST(PictureFilesTest, NamesWhatIsNoPictureByItsPathOnTheMachine) {
    const TemporaryDirectory directory;
    const Table<TextView, int, std::filesystem::path> cases = {
        {u"\\BACKGRND\\TEXT.SVG", 481, directory.Write("Backgrnd/Text.svg", "no picture")},
        {u"\\BACKGRND\\None.svg", 53, directory.Path() / "Backgrnd/None.svg"}};
    const QtPictureFiles files({PathText(directory.Path())});
    for (const auto& [path, number, real] : cases) {
        const Text asked = UpperCase(PathText(directory.Path())) + Text(path);
        const RuntimeError error = Raised([&] { files.LoadPicture(asked); });
        EXPECT_EQ(error.Number(), number);
        EXPECT_TRUE(std::string(error.what()).ends_with(": '" + real.native() + "'")) << error.what();
    }
}

}  // namespace
}  // namespace platform
