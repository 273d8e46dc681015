#include "platform/data/Dialect.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(DialectTest, TranslatesNamesAndStrings) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"", u""},
        {u"select ObjectName,Index,Caption from t", u"select ObjectName,[Index],Caption from t"},
        {u"select INDEX, tControls.Index", u"select [INDEX], tControls.[Index]"},
        {u"select BasePanelIndex, Index2 from t", u"select BasePanelIndex, Index2 from t"},
        {u"select Größe,Index", u"select Größe,[Index]"},
        {u"select [Index], `Index` from [From]", u"select [Index], `Index` from [From]"},
        {u"a = \"Horalink.mra\"", u"a = 'Horalink.mra'"},
        {u"a = \"say \"\"Index\"\"\"", u"a = 'say \"Index\"'"},
        {u"a = \"it's\"", u"a = 'it''s'"},
        {u"a = 'it''s \"Index\"'", u"a = 'it''s \"Index\"'"},
        {u"a = '[' and Index = ']'", u"a = '[' and [Index] = ']'"},
        {u"a = \"open\"\"", u"a = 'open\""},
        {u"a = \"", u"a = '"},
        {u"a = 'open Index", u"a = 'open Index"}};
    for (const auto& [query, expected] : cases) EXPECT_EQ(ToUtf8(ToSqliteDialect(query)), ToUtf8(expected));
}

TEST(DialectTest, TheRowsNumberStandsBeforeTheOtherColumnsOfASelection) {
    const std::pair<const char16_t*, std::optional<Text>> cases[] = {
        {u"  SELECT * FROM Registry", u"select rowid, * FROM Registry"},
        {u"select a from t where b = 'group'", u"select rowid, a from t where b = 'group'"},
        {u"select a from t Group by a", {}},
        {u"  ", {}}};
    for (const auto& [query, expected] : cases) EXPECT_EQ(WithRowNumber(query), expected) << ToUtf8(query);
}

}  // namespace
}  // namespace platform
