#include "platform/runtime/ProgramFile.h"

#include <iostream>

int main() {
    std::cout << platform::ProgramFile().string() << "\n";
}
