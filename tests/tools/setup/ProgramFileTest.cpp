#include <gtest/gtest.h>
#include <stdio.h>

#include "../../unit/TemporaryDirectory.h"

namespace setup {
namespace {

namespace fs = std::filesystem;

std::string OutputOf(const std::string& command) {
    FILE* output = popen(command.c_str(), "r");
    std::string text;
    for (int c = fgetc(output); c != EOF; c = fgetc(output)) text += static_cast<char>(c);
    pclose(output);
    return text;
}

// A program takes its market from where the link to it lies, not from where it lies itself.
TEST(ProgramFileTest, KeepsALinkInTheLastPlace) {
    const platform::TemporaryDirectory directory;
    const fs::path top = directory.Path();
    fs::create_directories(top / "VELMORA32/AB1CD/ADDINS/other");
    fs::create_directory_symlink(top / "VELMORA32", top / "short");
    const fs::path link = top / "VELMORA32/AB1CD/ADDINS/linked";
    fs::create_symlink(PROGRAM_FILE, link);
    fs::create_directories(top / "far/inner");
    fs::create_directory_symlink(top / "far/inner", top / "near");
    fs::create_symlink(PROGRAM_FILE, top / "far/linked");
    const std::string enter = "cd " + link.parent_path().string() + " && exec ";
    const std::pair<std::string, fs::path> cases[] = {
        {PROGRAM_FILE, PROGRAM_FILE},
        {link, link},
        {enter + "./linked", link},
        {enter + "./other/../linked", link},
        {enter + "../ADDINS//linked", link},
        {"PATH=" + link.parent_path().string() + " && linked", link},
        {top / "short/AB1CD/ADDINS/linked", top / "short/AB1CD/ADDINS/linked"},
        {top / "short/../VELMORA32/AB1CD/ADDINS/linked", link},
        // ".." behind a link leads out of the directory that the link leads to.
        {top / "near/../linked", top / "far/linked"}};
    for (const auto& [command, path] : cases) EXPECT_EQ(OutputOf(command), path) << command;
}

}  // namespace
}  // namespace setup
