#include "check/Lint.h"

#include <gtest/gtest.h>

namespace {

struct LintCase {
    std::string_view text;
    std::string_view fault;  // a part of the only fault; empty for none
};

void Expect(const LintCase& expected, const std::vector<std::string>& faults) {
    SCOPED_TRACE(expected.text);
    ASSERT_EQ(faults.size(), expected.fault.empty() ? 0U : 1U) << testing::PrintToString(faults);
    if (!faults.empty()) {
        EXPECT_NE(faults.front().find(expected.fault), std::string::npos) << faults.front();
    }
}

TEST(Lint, JudgesTokens) {
    const LintCase cases[] = {
        {"", ""},
        {"-1", ""},
        {"A text with 100 % of it, 5%", ""},
        {"Shown: & %CR & %CR & %ST", ""},
        {"Fish & %SP & %AND & %SP & Chips", ""},
        {"%SP4 & Indented", ""},
        {"Read&%CR&again", ""},
        {"Shown & %sp & here", "capitals"},
        {"Shown & %Cr", "capitals"},
        {"Fish %AND Chips", "inside a piece"},
        {"Line%CR", "inside a piece"},
        {"Text (%ST) here", "stand alone"},
        {"%ST%", "stand alone"},
        {"Hello & %CRLF", "is no token"},
        {"%TAB & Hello", "is no token"},
        {"Research & Development", "%AND"},
        {"R&D", "%AND"},
        {"Hello &", "nothing beside"},
        {"A & %CR & & B", "nothing beside"},
        {"Hello & -1", "wipes out"},
        {"Grüße & 中文", "%AND"},
    };
    for (const LintCase& each : cases) {
        auto faults = lng::TokenFaults(each.text);
        // An "&" at each side of nothing is one mistake that is told once for each "&".
        faults.erase(std::unique(faults.begin(), faults.end()), faults.end());
        Expect(each, faults);
    }
}

TEST(Lint, JudgesPlainTexts) {
    const LintCase cases[] = {
        {"Ampersands & percent % are plain", ""},
        {"50%standard", ""},
        {"One & %CR & Two", "%CR"},
        {"%st", "%ST"},
    };
    for (const LintCase& each : cases) Expect(each, lng::PlainTextFaults(each.text));
}

TEST(Lint, JudgesButtons) {
    const LintCase cases[] = {
        {"", ""},
        {"vbOKOnly", ""},
        {"vbYesNo+vbQuestion+vbDefaultButton2", ""},
        {"vbOKOnly+vbExclamation+vbMsgBoxHelpButton", ""},
        {"vbYesNo + vbQuestion", "blanks beside +"},
        {"vbyesno", "no name of a button"},
        {"vbOkOnly", "no name of a button"},
        {"vbYesNo+", "nothing beside"},
        {"+vbYesNo", "nothing beside"},
        {"vbYesNo+vbYesNo", "exclude each other"},
        {"vbYesNo+vbOKCancel", "exclude each other"},
        {"vbCritical+vbQuestion", "exclude each other"},
    };
    for (const LintCase& each : cases) {
        auto faults = lng::ButtonFaults(each.text);
        faults.erase(std::unique(faults.begin(), faults.end(),
                                 [](const std::string& left, const std::string& right) {
                                     return left.substr(0, 10) == right.substr(0, 10);
                                 }),
                     faults.end());
        Expect(each, faults);
    }
}

TEST(Lint, CountsArguments) {
    EXPECT_EQ(lng::CountArguments("no argument & %SP"), 0);
    EXPECT_EQ(lng::CountArguments("%ST & %SP & (%ST)"), 2);
}

}  // namespace
