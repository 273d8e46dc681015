#include "platform/desktop/IniText.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

using Case = std::pair<const char*, const char*>;  // before and after

// Each sets x/1, key K, to "v".
TEST(setup, SetsAValueInItsPlace) {
    const Case cases[] = {
        {"", "[x/1]\nK=v\n"},
        {"[X/1]\n k = old ; not a comment\nL=1\n", "[X/1]\nK=v\nL=1\n"},
        {"[x/1]\nL=1\n\n[y]\nK=1\n", "[x/1]\nL=1\nK=v\n\n[y]\nK=1\n"},
        {"[x/1]\n; mine\n\n[y]\n", "[x/1]\n; mine\nK=v\n\n[y]\n"},
        {"[y]\nK=1", "[y]\nK=1\n\n[x/1]\nK=v\n"},
        {"; K=0\n", "; K=0\n\n[x/1]\nK=v\n"},
        {"[x/1]\r\nK=old\r\n[y]\r\n", "[x/1]\r\nK=v\r\n[y]\r\n"},
        {"[y]\r\n", "[y]\r\n\r\n[x/1]\r\nK=v\r\n"},
        {"[x/1]\nL=1\n[y]\n[x/1]\nK=old\nK=older\n", "[x/1]\nL=1\n[y]\n[x/1]\nK=v\nK=older\n"},
        {"\xEF\xBB\xBF[x/1]\nK=old\n", "\xEF\xBB\xBF[x/1]\nK=v\n"}};
    for (const auto& [before, after] : cases) {
        IniText text(before);
        text.Set(u"x/1", u"K", u"v");
        EXPECT_EQ(text.Content(), after) << before;
        EXPECT_EQ(text.Value(u"x/1", u"k"), u"v") << before;
    }
}

TEST(setup, RemovesAKeyAndTheHeadThatIsLeftOverIt) {
    const Case cases[] = {{"", ""},
                          {"[x/1]\nK=1\n", ""},
                          {"[x/1]\nK=1\nk=2\n\n[y]\na=b\n", "[y]\na=b\n"},
                          {"[y]\na=b\n\n[x/1]\nK=1\n", "[y]\na=b\n"},
                          {"[x/1]\n; keep me\nK=1\n", "[x/1]\n; keep me\n"},
                          {"[x/1]\nK=1\n[y]\n\n[x/1]\nL=1\nK=2\n", "[x/1]\n[y]\n\n[x/1]\nL=1\n"},
                          {"K=1\n[y]\nK=2\n", "K=1\n[y]\nK=2\n"}};
    for (const auto& [before, after] : cases) {
        IniText text(before);
        text.Remove(u"x/1", u"K");
        EXPECT_EQ(text.Content(), after) << before;
    }
}

}  // namespace
}  // namespace platform
