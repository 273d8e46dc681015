#include "platform/data/Dialect.h"

#include <gtest/gtest.h>

#include <ostream>

namespace platform {
namespace {

struct Translation {
    const char16_t* query;
    const char16_t* expected;
};

std::ostream& operator<<(std::ostream& out, const Translation& translation) {
    return out << ToUtf8(translation.query);
}

class DialectTest : public testing::TestWithParam<Translation> {};

TEST_P(DialectTest, Translates) {
    EXPECT_EQ(ToUtf8(ToSqliteDialect(GetParam().query)), ToUtf8(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Names, DialectTest,
    testing::Values(Translation{u"", u""},
                    Translation{u"select Prompt from tMsgBox", u"select Prompt from tMsgBox"},
                    Translation{u"select ObjectName,Index,Caption from tControls",
                                u"select ObjectName,[Index],Caption from tControls"},
                    Translation{u"select INDEX", u"select [INDEX]"},
                    Translation{u"select tControls.Index", u"select tControls.[Index]"},
                    Translation{u"select BasePanelIndex, Index2 from t",
                                u"select BasePanelIndex, Index2 from t"},
                    Translation{u"select Größe,Index", u"select Größe,[Index]"},
                    Translation{u"select [Index] from [From]", u"select [Index] from [From]"},
                    Translation{u"select `Index`", u"select `Index`"},
                    Translation{u"Delete from t", u"[Delete] from t"}));

INSTANTIATE_TEST_SUITE_P(
    Strings, DialectTest,
    testing::Values(Translation{u"a = \"Horalink.mra\"", u"a = 'Horalink.mra'"},
                    Translation{u"a = \"\"", u"a = ''"},
                    Translation{u"a = \"say \"\"Index\"\"\"", u"a = 'say \"Index\"'"},
                    Translation{u"a = \"it's\"", u"a = 'it''s'"}, Translation{u"a = 'Index'", u"a = 'Index'"},
                    Translation{u"a = 'it''s \"Index\"'", u"a = 'it''s \"Index\"'"},
                    Translation{u"a = '[' and Index = ']'", u"a = '[' and [Index] = ']'"},
                    Translation{u"a = \"open", u"a = 'open"}, Translation{u"a = \"open\"\"", u"a = 'open\""},
                    Translation{u"a = \"", u"a = '"}, Translation{u"a = 'open Index", u"a = 'open Index"}));

TEST(RowNumber, StandsBeforeTheOtherColumns) {
    EXPECT_EQ(WithRowNumber(u"  SELECT * FROM Registry"), u"select rowid, * FROM Registry");
    EXPECT_EQ(WithRowNumber(u"select a from t where b = 'group'"),
              u"select rowid, a from t where b = 'group'");
}

TEST(RowNumber, IsNotForGroupsAndOtherStatements) {
    EXPECT_EQ(WithRowNumber(u"select a from t Group by a"), std::nullopt);
    EXPECT_EQ(WithRowNumber(u"selected"), std::nullopt);
    EXPECT_EQ(WithRowNumber(u"with x as (select 1) select * from x"), std::nullopt);
    EXPECT_EQ(WithRowNumber(u"  "), std::nullopt);
}

}  // namespace
}  // namespace platform
