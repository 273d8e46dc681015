// Runs the transcripts below this folder: commands, each with what it prints.
//
//   == NameOfTheCase
//   What the case is about, where its name doesn't say so.
//   $ a command of bash
//   > its second line
//   what it prints, to either stream
//   [2]                     its exit status, unless 0
//
// A case begins in an empty directory, called TOP in what it prints, with the `prelude` of its folder.
#include <gtest/gtest.h>
#include <stdio.h>

#include <map>
#include <sstream>

#include "../unit/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

// The script that prints a transcript anew: each command, then what it prints today.
std::string ScriptOf(const std::string& transcript) {
    std::istringstream lines(transcript);
    std::string script = "report() { [ $1 = 0 ] || echo \"[$1]\"; }\n", shown, command;
    const auto endCommand = [&] {
        if (!command.empty()) script += "cat <<'=='\n" + shown + "==\n" + command + "report $?\n";
        shown = command = "";
    };
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("> ")) endCommand();
        if (!line.starts_with("> ") && !line.starts_with("$ ")) continue;
        shown += line + "\n";
        command += line.substr(2) + "\n";
    }
    endCommand();
    return script;
}

std::string OutputOf(const std::string& command) {
    FILE* output = popen(command.c_str(), "r");
    std::string text;
    for (int c = fgetc(output); c != EOF; c = fgetc(output)) text += static_cast<char>(c);
    pclose(output);
    return text;
}

class Transcript : public testing::Test {
  public:
    Transcript(fs::path folder, std::string text) : folder_(std::move(folder)), text_(std::move(text)) {}

    void TestBody() override {
        const platform::TemporaryDirectory scratch;
        const std::string top = scratch.Path();
        scratch.Write("tmp/.script", ". $HERE/prelude\n" + ScriptOf(text_));
        const std::string output =
            OutputOf("cd " + top +
                     " && env -i LC_ALL=C.UTF-8 PATH=" PROGRAMS ":/usr/bin:/bin DATA=" DATA
                     " DATABASES=" DATABASES " TOP=" +
                     top + " HOME=" + top + "/home TMPDIR=" + top + "/tmp HERE=" + folder_.string() +
                     " timeout 200 bash tmp/.script 2>&1 </dev/null | sed 's|" + top + "|TOP|g'");
        EXPECT_EQ(output, text_);
    }

  private:
    const fs::path folder_;
    const std::string text_;
};

// The commands of each case, with what they print, by its name.
std::map<std::string, std::string> CasesIn(const fs::path& file) {
    std::map<std::string, std::string> cases;
    std::string name, blankLines;  // blank lines belong to a case if more of it follows
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line); blankLines += line.empty() ? "\n" : "") {
        if (line.starts_with("== ")) {
            name = line.substr(3);
            blankLines = "";
        } else if (!line.empty() && (cases.contains(name) || line.starts_with("$ "))) {
            cases[name] += std::exchange(blankLines, "") + line + "\n";
        }
    }
    return cases;
}

void Register(const fs::path& file) {
    const fs::path folder = file.parent_path();
    for (const auto& [name, text] : CasesIn(file))
        testing::RegisterTest(
            folder.filename().c_str(), name.c_str(), nullptr, nullptr, file.c_str(), 1,
            [folder, text = text]() -> testing::Test* { return new Transcript(folder, text); });
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    for (const auto& entry : fs::recursive_directory_iterator(TRANSCRIPTS))
        if (entry.path().extension() == ".transcript") Register(entry.path());
    return RUN_ALL_TESTS();
}
