#include "Fixture.h"

namespace setup {
namespace {

TEST(MarketTest, TakesFiveCharactersThatFitEverywhere) {
    for (const auto& [code, market] : {std::pair("10001", "10001"), {"ab1cd", "AB1CD"}, {"A_-z9", "A_-Z9"}})
        EXPECT_EQ(CheckedMarket(code), market);
    for (const char* code :
         {"", "1000", "100011", "10/01", "10\\01", "10.01", "10 01", "1000]", "100=1", "1000\n", "größe"})
        EXPECT_THROW(CheckedMarket(code), tools::WrongCall) << code;
}

class PackageTest : public SetupTest {};

TEST_F(PackageTest, ChoosesTheLanguageOfALocale) {
    const Package package(places_.package);
    const std::pair<const char*, std::vector<const char*>> cases[] = {
        {"de", {"de", "de_AT.UTF-8", "de_DE@euro", "DE"}},
        {"pt_BR", {"pt_BR", "pt_PT.UTF-8"}},
        {"en", {"", "C.UTF-8", "POSIX", "sv_SE.UTF-8", "d", "den"}}};
    for (const auto& [language, locales] : cases)
        for (const char* locale : locales) EXPECT_EQ(package.LanguageFor(locale), language) << locale;
    EXPECT_EQ(package.CheckedLanguage("DE"), "de");
    for (const char* name : {"fr", "", "..", "de/"})
        EXPECT_THROW(package.CheckedLanguage(name), tools::WrongCall) << name;
}

TEST_F(PackageTest, RefusesATreeWithoutTheAddIn) {
    fs::remove(places_.package / place::addIn);
    EXPECT_THROW(AddMarket(), tools::Fault);
    EXPECT_EQ(Home(), "") << "nothing is half entered";
}

}  // namespace
}  // namespace setup
