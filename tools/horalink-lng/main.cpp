#include "Commands.h"

int main(int argc, char** argv) {
    return lng::RunTool({argv + 1, argv + argc});
}
