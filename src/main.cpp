#include "run_driver.h"

int main(int argc, char** argv) {
  return runConnectionTest(argc, argv);
}
