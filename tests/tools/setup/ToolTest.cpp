#include "horalink-setup/Tool.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "../../unit/TemporaryDirectory.h"

namespace setup {
namespace {

using Words = std::vector<std::string>;

class ToolTest : public testing::Test {
  protected:
    ToolTest() {
        setenv("HOME", directory_.Path().c_str(), 1);
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) unsetenv(name);
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    }
    int Run(const Words& words) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = RunTool(words, [](const Words&) { ADD_FAILURE() << "nothing is there to start"; });
        output_ = testing::internal::GetCapturedStdout();
        errors_ = testing::internal::GetCapturedStderr();
        return status;
    }

    const platform::TemporaryDirectory directory_;
    std::string output_, errors_;
};

TEST_F(ToolTest, NamesWhatIsWrongWithACall) {
    const std::pair<Words, const char*> cases[] = {
        {{}, "the command is missing"},
        {{"install"}, "'install' is no command"},
        {{"add", "--market"}, "--market wants a value"},
        {{"add", "--market=10/01"}, "'10/01' is no market code"},
        {{"add", "--root="}, "--root is missing"},
        {{"add", "10001"}, "'10001' is too much"},
        {{"add", "--force=yes"}, "--force takes no value"},
        {{"remove", "--market", "10001", "--market", "20002"}, "--market is given twice"},
        {{"use"}, "the market code is missing"},
        {{"use", "10001"}, "isn't entered"},
        {{"language"}, "the language is missing"},
        {{"status", "--xml"}, "'--xml' is no option"},
        {{"start"}, "the program is missing"},
        {{"start", "sh", "-c", "true"}, "'sh' is no program of this installation"}};
    for (const auto& [words, message] : cases) {
        EXPECT_EQ(Run(words), 2) << message;
        EXPECT_TRUE(errors_.starts_with("horalink-setup: ")) << errors_;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, message, errors_);
        EXPECT_EQ(output_, "") << message;
    }
    EXPECT_FALSE(std::filesystem::exists(directory_.Path() / ".config/velmora"));
}

// The test's own program lies in no package's tree.
TEST_F(ToolTest, TellsThatThePackageIsMissing) {
    EXPECT_EQ(Run({"add"}), 1);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "no tree of an installed package", errors_);
    EXPECT_EQ(Run({"start", "horalink", "--help"}), 1);
    EXPECT_EQ(Run({"status", "--json"}), 1);
    EXPECT_TRUE(output_.starts_with("{\"version\": ")) << output_;
}

}  // namespace
}  // namespace setup
