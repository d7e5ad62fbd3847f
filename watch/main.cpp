#include "command_line.h"

int main(int argc, char** argv) {
  return watch::runCommandLine(argc, argv);
}
