#include <unistd.h>

#include "horalink-setup/Tool.h"

namespace {

void ExecuteProgram(const std::vector<std::string>& command) {
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    execv(words.front(), words.data());
}

}  // namespace

int main(int argc, char** argv) {
    return setup::RunTool({argv + 1, argv + argc}, ExecuteProgram);
}
