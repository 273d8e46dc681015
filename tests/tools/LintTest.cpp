#include "check/Lint.h"

#include <gtest/gtest.h>

namespace {

struct LintCase {
    std::string_view text;
    std::string_view fault;  // a part of each fault; empty for none
    std::size_t faults = 1;
};

using Judge = std::vector<std::string> (*)(std::string_view);

void ExpectEach(Judge judge, std::initializer_list<LintCase> cases) {
    for (const LintCase& expected : cases) {
        SCOPED_TRACE(expected.text);
        const auto faults = judge(expected.text);
        EXPECT_EQ(faults.size(), expected.fault.empty() ? 0U : expected.faults);
        for (const std::string& fault : faults) EXPECT_NE(fault.find(expected.fault), fault.npos) << fault;
    }
}

TEST(Lint, JudgesTokens) {
    ExpectEach(lng::TokenFaults, {{"", ""},
                                  {"-1", ""},
                                  {"A text with 100 % of it, 5%", ""},
                                  {"Shown: & %CR & %CR & %ST", ""},
                                  {"Fish & %SP & %AND & %SP & Chips", ""},
                                  {"%SP4 & Indented", ""},
                                  {"Read&%CR&again", ""},
                                  {"Shown & %sp & here", "capitals"},
                                  {"Fish %AND Chips", "inside a piece"},
                                  {"Text (%ST) here", "stand alone"},
                                  {"%ST%", "stand alone"},
                                  {"Hello & %CRLF", "is no token"},
                                  {"Research & Development", "%AND"},
                                  {"Hello &", "nothing beside"},
                                  {"A & %CR & & B", "nothing beside", 2},
                                  {"Hello & -1", "wipes out"},
                                  {"Grüße & 中文", "%AND"}});
}

TEST(Lint, JudgesPlainTexts) {
    ExpectEach(lng::PlainTextFaults, {{"Ampersands & percent % are plain", ""},
                                      {"50%standard", ""},
                                      {"One & %CR & Two", "%CR"},
                                      {"%st", "%ST"}});
}

TEST(Lint, JudgesButtons) {
    ExpectEach(lng::ButtonFaults, {{"", ""},
                                   {"vbOKOnly+vbExclamation+vbMsgBoxHelpButton", ""},
                                   {"vbYesNo + vbQuestion", "blanks beside +", 2},
                                   {"vbyesno", "no name of a button"},
                                   {"vbYesNo+", "nothing beside"},
                                   {"vbYesNo+vbYesNo", "exclude each other"},
                                   {"vbYesNo+vbOKCancel", "exclude each other"},
                                   {"vbCritical+vbQuestion", "exclude each other"}});
}

TEST(Lint, CountsArguments) {
    EXPECT_EQ(lng::CountArguments("no argument & %SP"), 0);
    EXPECT_EQ(lng::CountArguments("%ST & %SP & (%ST)"), 2);
    EXPECT_EQ(lng::CountArguments("Shown: & %st"), 1) << "its small letters are a fault of their own";
}

}  // namespace
