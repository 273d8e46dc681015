#include "check/Lint.h"

#include <gtest/gtest.h>

namespace {

struct LintCase {
    std::string_view text;
    std::string_view fault;  // a part of each fault; empty for none
    std::size_t faults = 1;
};

using Judge = std::vector<std::string> (*)(std::string_view);

void ExpectEach(Judge judge, const std::vector<LintCase>& cases) {
    for (const LintCase& expected : cases) {
        SCOPED_TRACE(expected.text);
        const auto faults = judge(expected.text);
        EXPECT_EQ(faults.size(), expected.fault.empty() ? 0U : expected.faults);
        for (const std::string& fault : faults) EXPECT_NE(fault.find(expected.fault), fault.npos) << fault;
    }
}

TEST(Lint, JudgesTokens) {
    const std::vector<LintCase> cases = {
        {"Fish & %SP & %AND & %SP & Chips", ""}, {"Hello & %CRLF", "is no token"},
        {"A & %CR & & B", "nothing beside", 2},  {"Hello &", "nothing beside"},
        {"Fish %AND Chips", "inside a piece"},   {"Hello & -1", "wipes out"},
        {"A text with 100 % of it, 5%", ""},     {"Grüße & 中文", "%AND"},
        {"Shown & %sp & here", "capitals"},      {"%SP4 & Indented", ""},
        {"Text (%ST) here", "stand alone"},      {"%ST%", "stand alone"},
        {"Research & Development", "%AND"},      {"Read&%CR&again", ""},
        {"Shown: & %CR & %CR & %ST", ""}};
    ExpectEach(lng::TokenFaults, cases);
    ExpectEach(lng::TokenFaults, {{"", ""}, {"-1", ""}});
}

TEST(Lint, JudgesPlainTexts) {
    ExpectEach(lng::PlainTextFaults, {{"Ampersands & percent % are plain", ""}, {"50%standard", ""}});
    ExpectEach(lng::PlainTextFaults, {{"One & %CR & Two", "%CR"}, {"%st", "%ST"}});
}

TEST(Lint, JudgesButtons) {
    const std::vector<LintCase> cases = {
        {"vbOKOnly+vbExclamation+vbMsgBoxHelpButton", ""}, {"vbYesNo+vbYesNo", "exclude each other"},
        {"vbCritical+vbQuestion", "exclude each other"},   {"vbYesNoCancel+", "nothing beside"},
        {"vbYesNo + vbQuestion", "blanks beside +", 2},    {"vbyesno", "no name of a button"},
        {"vbYesNo+vbOKCancel", "exclude each other"}};
    ExpectEach(lng::ButtonFaults, cases);
    ExpectEach(lng::ButtonFaults, {{"", ""}});
}

TEST(Lint, CountsArguments) {
    EXPECT_EQ(lng::CountArguments("no argument & %SP"), 0);
    EXPECT_EQ(lng::CountArguments("%ST & %SP & (%ST)"), 2);
    EXPECT_EQ(lng::CountArguments("Shown: & %st"), 1) << "its small letters are a fault of their own";
}

}  // namespace
